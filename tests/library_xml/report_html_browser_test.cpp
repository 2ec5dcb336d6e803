// `utilkit report html`: the page it writes, opened from a file in headless
// Chromium, shows every image decoded at its size and logs no errors.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <utilkit/library_xml/library_xml.h>

#include "library_xml/library_xml_test_support.h"

namespace {

namespace fs = std::filesystem;

std::string Slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// Logs, once the page has loaded, each image's natural and rendered size
// and the number of error events; the browser's log shows it.
constexpr const char* kProbe =
    "<script>let errors=0;addEventListener('error',()=>++errors,true);"
    "addEventListener('load',()=>console.log('probe '+[...document.images].map(i=>"
    "i.naturalWidth+'x'+i.naturalHeight+'/'+i.width+'x'+i.height).join(';')+' errors='+errors));"
    "</script>";

TEST(ReportHtmlBrowserTest, ImagesDecodeAtTheirSizeWithoutErrors) {
  const char* chromium = "/usr/bin/chromium";
  if (!fs::exists(chromium)) GTEST_SKIP() << "Chromium is not installed (Debian package chromium)";
  const fs::path dir = fs::path(::testing::TempDir()) / "lxml_browser";
  fs::remove_all(dir);
  fs::create_directories(dir);

  VCULibraryXML library;
  library.SetTitle("Run <12>");
  auto* page = new VCULibraryXML_Page("Plots & notes");
  const std::string png = lxml_test::MakePng(64, 32), jpeg = lxml_test::MakeJpeg(16, 8);
  for (const std::string* bytes : {&png, &jpeg}) {
    auto* image = new VCULibraryXML_ItemImage();
    ASSERT_TRUE(image->SetData(bytes->data(), static_cast<int32_t>(bytes->size())));
    page->AppendItem(image);
  }
  auto* text = new VCULibraryXML_ItemText();
  text->SetText("<b>not bold</b> & caf\xc3\xa9");
  page->AppendItem(text);
  library.AppendPage(page);
  ASSERT_TRUE(library.SaveToFile((dir / "library.lxm").string().c_str()));
  const std::string tool = std::string(UTILKIT_TOOL) + " report html " +
                           (dir / "library.lxm").string() + " -o " + (dir / "page.html").string();
  ASSERT_EQ(std::system(tool.c_str()), 0);
  std::string html = Slurp(dir / "page.html");
  EXPECT_NE(html.find("<pre>&lt;b&gt;not bold&lt;/b&gt; &amp; caf\xc3\xa9</pre>"),
            std::string::npos);
  EXPECT_NE(html.find("<a href=\"#page-1\">Plots &amp; notes</a>"), std::string::npos);
  html.insert(html.rfind("</body>"), kProbe);
  std::ofstream(dir / "probe.html", std::ios::binary) << html;

  // One run (Chromium takes seconds to start): the screenshot is taken after
  // the load event, whose probe line goes to the log.
  const std::string command =
      std::string("timeout 60 ") + chromium +
      " --headless --no-sandbox --disable-gpu --disable-quic --no-first-run"
      " --disable-background-networking --disable-component-update --disable-sync"
      " --enable-logging=stderr --v=0 --user-data-dir=" +
      (dir / "profile").string() +
      " --window-size=640,400 --screenshot=" + (dir / "shot.png").string() + " file://" +
      (dir / "probe.html").string() + " >/dev/null 2>" + (dir / "log.txt").string();
  const int status = std::system(command.c_str());
  const std::string log = Slurp(dir / "log.txt"), picture = Slurp(dir / "shot.png");
  if (status != 0 && picture.empty()) GTEST_SKIP() << "Chromium cannot run here:\n" << log;
  EXPECT_NE(log.find("\"probe 64x32/64x32;16x8/16x8 errors=0\""), std::string::npos) << log;
  // The probe's line is the only console message.
  const size_t console = log.find("CONSOLE");
  EXPECT_NE(console, std::string::npos);
  EXPECT_EQ(log.find("CONSOLE", console + 1), std::string::npos) << log;
  VTLibraryXMLImageFormat format = VTLibraryXMLImageFormat::None;
  int32_t width = 0, height = 0;
  EXPECT_TRUE(VCULibraryXML_ItemImage::ReadHeader(
      reinterpret_cast<const unsigned char*>(picture.data()), static_cast<int64_t>(picture.size()),
      &format, &width, &height));
  EXPECT_EQ(width, 640);
  EXPECT_EQ(height, 400);
  fs::remove_all(dir);
}

}  // namespace
