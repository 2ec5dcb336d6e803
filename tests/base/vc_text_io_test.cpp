#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_text_io.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class VCTextIoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    m_path = fs::temp_directory_path() / (std::string("utilkit_vctextio_") + info->name());
    m_pathText = m_path.string();
    fs::remove(m_path);
  }
  void TearDown() override {
    VFErrorClear();
    fs::remove(m_path);
  }

  std::string Contents() const {
    std::ifstream in(m_path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  void SetContents(const std::string& bytes) const {
    std::ofstream(m_path, std::ios::binary) << bytes;
  }
  std::vector<std::string> ReadAll() const {
    VCTextIo in;
    EXPECT_TRUE(in.Open(Path(), VCIo::kModeRead));
    std::vector<std::string> lines;
    VCString line;
    while (in.ReadLine(&line)) lines.push_back(line.str());
    EXPECT_EQ(VFErrorGetCount(), 0u);
    return lines;
  }
  const char* Path() const { return m_pathText.c_str(); }

  fs::path m_path;
  std::string m_pathText;
};

using Lines = std::vector<std::string>;

TEST_F(VCTextIoTest, WriteStringWritesOneLineEndedByNewline) {
  VCTextIo out;
  ASSERT_TRUE(out.Open(Path(), VCIo::kModeCreate));
  ASSERT_TRUE(out.WriteString("No of rows: 2, No of cols: 1"));
  ASSERT_TRUE(out.WriteString(""));
  ASSERT_TRUE(out.WriteString(nullptr));
  ASSERT_TRUE(out.WriteString("1,a"));
  ASSERT_TRUE(out.Close());
  EXPECT_EQ(Contents(), "No of rows: 2, No of cols: 1\n\n\n1,a\n");

  ASSERT_TRUE(out.Open(Path(), VCIo::kModeAppend));
  ASSERT_TRUE(out.WriteString("2,b"));
  ASSERT_TRUE(out.Close());
  EXPECT_EQ(ReadAll(), (Lines{"No of rows: 2, No of cols: 1", "", "", "1,a", "2,b"}));
}

TEST_F(VCTextIoTest, ReadLineTakesLfCrLfAndAnUnendedLastLine) {
  SetContents("one\r\ntwo\n\nin\rside\r\n\r\nlast");
  EXPECT_EQ(ReadAll(), (Lines{"one", "two", "", "in\rside", "", "last"}));
  SetContents("only\n");
  EXPECT_EQ(ReadAll(), (Lines{"only"}));
  SetContents("");
  EXPECT_EQ(ReadAll(), Lines{});
}

TEST_F(VCTextIoTest, LinesLongerThanTheReadAheadStayWhole) {
  const std::string longLine(65535, 'x');
  const std::string longer(200000, 'y');
  SetContents(longLine + "\r\n" + longer + "\nz");
  EXPECT_EQ(ReadAll(), (Lines{longLine, longer, "z"}));
}

TEST_F(VCTextIoTest, ReadLineFailsWithARecordWhenItCannotRead) {
  VCTextIo file;
  VCString line;
  EXPECT_FALSE(file.ReadLine(&line));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorNotOpen);
  EXPECT_FALSE(file.Open(Path(), VCIo::kModeRead));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorOpen);
  ASSERT_TRUE(file.Open(Path(), VCIo::kModeCreate));
  EXPECT_FALSE(file.ReadLine(&line));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorRead);
  EXPECT_TRUE(file.Close());
}

TEST_F(VCTextIoTest, ReopeningStartsReadingFromTheTop) {
  SetContents("a\nb\n");
  VCTextIo in;
  VCString line;
  ASSERT_TRUE(in.Open(Path(), VCIo::kModeRead));
  ASSERT_TRUE(in.ReadLine(&line));
  ASSERT_TRUE(in.Open(Path(), VCIo::kModeRead));
  ASSERT_TRUE(in.ReadLine(&line));
  EXPECT_EQ(line, "a");
}

}  // namespace
