// The host as a user runs it, with the plug-in library that it loads by name; and its browser without a window.
#include "apps/host/browser.h"
#include "apps/tool.h"

namespace {

using HostTest = ToolTest;

TEST_F(HostTest, AllOfAStreamReachesThePlugIn) {
  std::string four;
  for (int i = 0; i < 4; ++i) four += Read_Text(sample);
  Write("four.vlr", four);
  const std::pair<std::string, const char*> calls[] = {{"- --version-word 0x000C", "cat four.vlr | " VELARTO_HOST_PATH},
                                                       {"four.vlr --menu --child --size 200x150 --screen 16", VELARTO_HOST_PATH}};
  for (const auto& [options, program] : calls) {
    const Outcome outcome = Run("--quit " + options, program);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    Expect_In(outcome.out, std::to_string(four.size()) + " bytes delivered, ");
    EXPECT_TRUE(outcome.out.ends_with(" 1 stream\n")) << outcome.out;
  }
}

TEST_F(HostTest, WhatCannotBeIsToldInOneLine) {
  const auto expect_refused = [&](const std::string& options, const std::string& file, const std::string& text, int code = 1) {
    Expect_Failure(options + " '" + file + "'", text, code, VELARTO_HOST_PATH);
  };
  expect_refused("--version-word 0x0100", sample, "libvelarto.so does not start for this browser: NP_Initialize gives 8");
  expect_refused("--library missing.so", sample, "can't load missing.so: ");
  expect_refused("--library libm.so.6", sample, "libm.so.6 is no plug-in: it has no NP_GetEntryPoints");
  // With windows of its own it refuses ours.
  expect_refused("--library " VELARTO_LIBRARY_PATH, sample, "NPP_SetWindow gives 4; only the library in");
  expect_refused("", "missing.vlr", "can't open missing.vlr");
  expect_refused("--size 640", "x", "640 is not a size like", 2);
  expect_refused("--loop", "-", "only a file can be read again", 2);
}

TEST(Browser, WithoutAWindowBytesAreHeldBackAndAskedForAgain) {
  constexpr int64_t RingSize = 524288;
  Plugin plugin;
  Page page;
  std::string error;
  ASSERT_TRUE(Plugin_Load(VELARTO_LIBRARY_PATH, 0x000B, &plugin, &error)) << error;
  ASSERT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
  ASSERT_EQ(Page_New_Stream(&page, "video/x-orvistream", "http://camera/live"), NPERR_NO_ERROR);
  const Bytes bytes(RingSize, 7);
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
