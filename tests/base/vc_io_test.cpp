#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_io.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

class VCIoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    m_dir = fs::temp_directory_path() / (std::string("utilkit_vcio_") + info->name());
    fs::remove_all(m_dir);
    fs::create_directories(m_dir);
  }
  void TearDown() override {
    VFErrorClear();
    fs::remove_all(m_dir);
  }

  std::string PathOf(const char* name) const { return (m_dir / name).string(); }

  static std::string Contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  static bool WriteFile(const std::string& path, int32_t mode, const std::string& bytes) {
    VCIo file;
    return file.Open(path.c_str(), mode) &&
           file.Write(bytes.data(), static_cast<int64_t>(bytes.size())) && file.Close();
  }

  fs::path m_dir;
};

TEST_F(VCIoTest, OpeningAMissingFileFailsNamingThePath) {
  const std::string path = PathOf("missing.bin");
  VCIo file;
  EXPECT_FALSE(file.Open(path.c_str(), VCIo::kModeRead));
  EXPECT_FALSE(file.IsOpen());
  const VCErrorRecord* e = VFErrorGetLast();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(VFErrorGetCode(e), kVCIoErrorOpen);
  EXPECT_EQ(std::string(VFErrorGetMessage(e)), "Cannot open file: " + path);
  EXPECT_STREQ(VFErrorGetLocation(e), "VCIo::Open");
  EXPECT_NE(VFErrorGetOpSysCode(e), 0);
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(VCIoTest, CreateWritesAnewAndAppendAddsAtTheEnd) {
  const std::string path = PathOf("modes.bin");
  ASSERT_TRUE(WriteFile(path, VCIo::kModeAppend, "ab"));  // append creates a missing file
  ASSERT_TRUE(WriteFile(path, VCIo::kModeAppend, "c"));
  EXPECT_EQ(Contents(path), "abc");
  ASSERT_TRUE(WriteFile(path, VCIo::kModeCreate, "xy"));
  EXPECT_EQ(Contents(path), "xy");
  ASSERT_TRUE(WriteFile(path, VCIo::kModeAppend, "z"));
  EXPECT_EQ(Contents(path), "xyz");
}

TEST_F(VCIoTest, ReadsAtAnyOffsetAndReportsShortReads) {
  const std::string path = PathOf("digits.bin");
  ASSERT_TRUE(WriteFile(path, VCIo::kModeCreate,
                        std::string("01\r\n\0"
                                    "56789",
                                    10)));
  VCIo file;
  ASSERT_TRUE(file.Open(path.c_str(), VCIo::kModeRead));
  int64_t size = 0;
  ASSERT_TRUE(file.GetSize(&size));
  EXPECT_EQ(size, 10);
  char bytes[16] = {};
  ASSERT_TRUE(file.Read(bytes, 4, 2));
  EXPECT_EQ(std::string(bytes, 4), std::string("\r\n\0"
                                               "5",
                                               4));
  ASSERT_TRUE(file.Read(bytes, 2, 0));
  EXPECT_EQ(std::string(bytes, 2), "01");

  EXPECT_FALSE(file.Read(bytes, 5, 8));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorRead);
  EXPECT_EQ(std::string(VFErrorGetMessage(VFErrorGetLast())), "Cannot read file: " + path);
  int64_t got = -1;
  ASSERT_TRUE(file.Read(bytes, 5, 8, &got));
  EXPECT_EQ(got, 2);
  EXPECT_EQ(std::string(bytes, 2), "89");
  ASSERT_TRUE(file.Read(bytes, 5, 20, &got));
  EXPECT_EQ(got, 0);
  EXPECT_FALSE(file.Read(bytes, -1, 0, &got));
  EXPECT_FALSE(file.Read(bytes, 1, -1, &got));
  EXPECT_TRUE(file.Close());
}

TEST_F(VCIoTest, SizeCountsPendingWritesAndKeepsThePosition) {
  const std::string path = PathOf("size.bin");
  VCIo file;
  ASSERT_TRUE(file.Open(path.c_str(), VCIo::kModeCreate));
  ASSERT_TRUE(file.Write("abc", 3));
  int64_t size = 0;
  ASSERT_TRUE(file.GetSize(&size));
  EXPECT_EQ(size, 3);
  ASSERT_TRUE(file.Write("de", 2));
  ASSERT_TRUE(file.Close());
  EXPECT_EQ(Contents(path), "abcde");
}

TEST_F(VCIoTest, WrongUseFailsWithItsOwnRecord) {
  const std::string path = PathOf("use.bin");
  VCIo file;
  char byte = 0;
  int64_t size = 0;
  EXPECT_FALSE(file.Write("a", 1));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorNotOpen);
  EXPECT_FALSE(file.Read(&byte, 1, 0));
  EXPECT_FALSE(file.GetSize(&size));
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(VFErrorGetCount(), 4u);

  EXPECT_FALSE(file.Open(path.c_str(), 2));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorOpen);
  EXPECT_FALSE(file.Open(nullptr, VCIo::kModeRead));

  ASSERT_TRUE(file.Open(path.c_str(), VCIo::kModeCreate));
  EXPECT_FALSE(file.Read(&byte, 1, 0));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorRead);
  ASSERT_TRUE(file.Open(path.c_str(), VCIo::kModeRead));  // closes the earlier file
  EXPECT_FALSE(file.Write("a", 1));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCIoErrorWrite);
  EXPECT_EQ(Contents(path), "");
}

TEST_F(VCIoTest, DestructorClosesAndKeepsWhatWasWritten) {
  const std::string path = PathOf("scope.bin");
  {
    VCIo file;
    ASSERT_TRUE(file.Open(path.c_str(), VCIo::kModeCreate));
    ASSERT_TRUE(file.Write("kept", 4));
  }
  EXPECT_EQ(Contents(path), "kept");
}

}  // namespace
