// The host as a user runs it, with the plug-in library that it loads by name; and its browser without a window.
#include "apps/host/browser.h"
#include "apps/tool.h"

namespace {

struct HostTest : ToolTest {
  Outcome Run_Host(const std::string& arguments, const std::string& input = "") const {
    return Run("--version >/dev/null; " + input + " " VELARTO_HOST_PATH " " + arguments);
  }
  void Expect_Refused(const std::string& arguments, const std::string& text, int code = 1) const {
    const Outcome outcome = Run_Host(arguments);
    const size_t line = outcome.err.find("velarto-host: ");
    EXPECT_TRUE(outcome.code == code && line != std::string::npos) << arguments << ": " << outcome.code << outcome.err;
    EXPECT_EQ(outcome.out, "") << arguments;
    if (line == std::string::npos) return;
    EXPECT_NE(outcome.err.find(text, line), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n', line), outcome.err.size() - 1) << outcome.err;
  }
};

TEST_F(HostTest, AStreamReachesThePlugInWhole) {
  const std::string size = std::to_string(4 * fs::file_size(sample)) + " bytes delivered, ";
  const std::string files = "cat '" + sample + "' '" + sample + "' '" + sample + "' '" + sample + "'";
  Run_Host("--version", files + " >four.vlr;");
  for (const std::string options : {"- --version-word 0x000C", "four.vlr --menu --child --size 200x150 --screen 16"}) {
    const Outcome outcome = Run_Host("--quit " + options, options[0] == '-' ? files + " |" : "");
    EXPECT_TRUE(outcome.code == 0 && outcome.out.find(size) != std::string::npos) << outcome.out << outcome.err;
    EXPECT_TRUE(outcome.out.ends_with(" 1 stream\n")) << outcome.out;
  }
}

TEST_F(HostTest, WhatCannotBeIsToldInOneLine) {
  Expect_Refused("--version-word 0x0100 '" + sample + "'",
                 "libvelarto.so does not start for this browser: NP_Initialize gives 8");
  Expect_Refused("--library missing.so '" + sample + "'", "can't load missing.so: ");
  Expect_Refused("--library libm.so.6 '" + sample + "'", "libm.so.6 is no plug-in: it has no NP_GetEntryPoints");
  // With a window system of its own it knows none of ours.
  Expect_Refused("--library " VELARTO_LIBRARY_PATH " '" + sample + "'", "does not take the window over; only the library in");
  Expect_Refused("missing.vlr", "can't open missing.vlr");
  Expect_Refused("--size 640 x", "640 is no size such as", 2);
  Expect_Refused("--loop -", "only a file can be read again", 2);
}

TEST(Browser, WithoutAWindowBytesAreHeldBackAndAskedForAgain) {
  constexpr int64_t RingSize = 524288;
  Plugin plugin;
  Page page;
  std::string error;
  ASSERT_TRUE(Plugin_Load(VELARTO_LIBRARY_PATH, 0x000B, &plugin, &error)) << error;
  ASSERT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
  ASSERT_EQ(Page_New_Stream(&page, "video/x-orvistream", "http://camera/live"), NPERR_NO_ERROR);
  const std::vector<uint8_t> bytes(RingSize, 7);
  while (Page_Deliver(&page, bytes) > 0) continue;
  EXPECT_TRUE(page.delivered == RingSize && page.heldBack == 1) << page.delivered;
  Page_End_Stream(&page, NPRES_NETWORK_ERR);
  EXPECT_TRUE(page.wanted.empty() && Page_Deliver(&page, bytes) == 0);
  Page_New_Stream(&page, "video/x-orvistream", "http://camera/more");
  Page_Close(&page);
  EXPECT_EQ(page.wanted, std::vector<std::string>{"http://camera/more"});
  Plugin_Unload(&plugin);
  EXPECT_EQ(plugin.module, nullptr);
}

}  // namespace
