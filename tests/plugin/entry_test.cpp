#include "plugin/browser.h"
#include "plugin/instances.h"
#include "plugin/pump.h"

TEST_F(PluginTest, SlotsAreRefilledAndTheMarkStaysAboveTheHighest) {
  Start(1, 0);
  std::vector<NPInstance> many(MostInstances + 1);
  std::vector<int32_t> marks;
  const auto note = [&](NPError) { marks.push_back(instanceHighWater); };
  note(Add(&many[0])), note(Add(&many[1])), note(plugin.destroy(&many[1], nullptr)), note(plugin.destroy(&many[0], nullptr));
  EXPECT_EQ(marks, (std::vector{0, 1, 1, 0})) << "a free slot above the highest";
  for (NPInstance& each : many) ASSERT_EQ(Add(&each), NPERR_NO_ERROR);
  const HWND listed = Page_Window(page, 0, 0, 9, 9);
  Adopt(&many[MostInstances - 1], listed), Adopt(&many.back(), window);
  EXPECT_EQ(SendMessageA(listed, WM_APP, 0, 0), OwnResult);
  EXPECT_EQ(SendMessageA(window, WM_APP, 0, 0), 0) << "unlisted: default handling";
  plugin.destroy(&many[5], nullptr);
  EXPECT_EQ(instanceHighWater, MostInstances - 1);
  Add(&many[5]);
  EXPECT_EQ(instanceSlots[5], &many[5]);
  EXPECT_EQ(instanceHighWater, MostInstances - 1) << "a lower slot doesn't lower it";
  EXPECT_EQ(SendMessageA(listed, WM_APP, 0, 0), OwnResult);
  for (NPInstance& each : many) plugin.destroy(&each, nullptr);
}

TEST_F(PluginTest, VersionsNullsAndMemory) {
  EXPECT_EQ(NP_GetEntryPoints(nullptr) * 10 + NP_Initialize(nullptr), 33);
  EXPECT_EQ(Start(1, 1, 0x0100), NPERR_INCOMPATIBLE_VERSION_ERROR);
  netscape.version = 0x000B;
  EXPECT_EQ(NP_Initialize(&netscape), NPERR_NO_ERROR);
  EXPECT_EQ(mouseLButton + mouseRButton, 2);
  NP_Shutdown();
  netscape.version = 0x000C;
  EXPECT_EQ(NP_Initialize(&netscape), NPERR_NO_ERROR);
  EXPECT_EQ(mouseLButton + mouseRButton, 0);
  const NPPluginFuncs& p = plugin;
  EXPECT_TRUE(p.version == 9 && p.asfile && p.asfile == p.print && p.print == p.urlnotify && !p.event && !p.javaClass);
  for (NPP none : {NPP(nullptr), &instance}) {  // The second one without a decoder.
    EXPECT_EQ(Adopt(none, window) + p.newstream(none, nullptr, nullptr, 0, nullptr) + p.destroystream(none, nullptr, 0), 6);
    EXPECT_EQ(p.destroy(none, nullptr) + p.writeready(none, nullptr) + p.write(none, nullptr, 0, 1, nullptr), 0);
  }
  EXPECT_EQ(Add(nullptr), NPERR_INVALID_INSTANCE_ERROR);
  for (int32_t after = 0; !instance.pdata; ++after) {
    Rig_Fail(RigStep::Memory, after, 1);
    const NPError result = Add(&instance);
    ASSERT_EQ(result, instance.pdata ? NPERR_NO_ERROR : NPERR_OUT_OF_MEMORY_ERROR) << after;
  }
}

TEST_F(PluginTest, StreamsKeepVideoUrlsAndAskAgainWithoutAWindow) {
  const auto* const decoder = Open(0, 0, nullptr);
  const std::string most(1023, 'u'), more(1024, 'u');
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"a video b", most, most}, {"Video", "a", most}, {nullptr, "a", most}, {"video", more, ""}, {"video/x", "b", "b"}};
  for (const auto& [type, url, expected] : cases) {
    stream.url = url.c_str();
    EXPECT_TRUE(New_Stream(type) == NPERR_NO_ERROR && decoder->streamState == 1 && decoder->npStream == &stream);
    EXPECT_EQ(decoder->urlBuffer, expected);
  }
  for (const int16_t reason : {NPRES_NETWORK_ERR, NPRES_DONE, NPRES_USER_BREAK}) plugin.destroystream(&instance, &stream, reason);
  Rig_Fail(RigStep::CreateOffscreen, 0, 1);
  EXPECT_EQ(Adopt(&instance, window), NPERR_MODULE_LOAD_FAILED_ERROR);
  EXPECT_EQ(Adopt(&instance, window), NPERR_NO_ERROR);
  const int32_t objects = Rig_Objects_Alive();
  Adopt(&instance, window);
  EXPECT_EQ(Rig_Objects_Alive(), objects) << "one tooltip";
  plugin.destroystream(&instance, &stream, NPRES_DONE);
  EXPECT_EQ(asked, (std::vector<std::string>{"b", "b"}));
}

static int32_t shown;

TEST_F(PluginTest, ALongStreamIsShownAndNothingIsHeldBackForGood) {
  JdecDecoder* const decoder = Open(0, 1, nullptr);
  Bytes frames;
  while (frames.size() < 600000) frames = Joined({frames, small.compact, large.jfif, large.prefixed});
  EXPECT_EQ(plugin.writeready(&instance, &stream), 8192);
  EXPECT_EQ(plugin.write(&instance, &stream, 0, 600000, frames.data()), StreamBufferSize);
  Pump();
  EXPECT_EQ(plugin.writeready(&instance, &stream), 0) << "held until there is a window";
  Adopt(&instance, window);
  SendMessageA(window, WM_COMMAND, StartRecordingCommand, 0);
  const VelartoDrawCallback count = [](HWND, uintptr_t) { ++shown; };
  JDEC_register_draw_callback(decoder, count, 0);
  for (int i = 0; i < 2; ++i) Feed(frames);
  EXPECT_TRUE(Read_File(path) == Joined({{frames.begin(), frames.begin() + StreamBufferSize}, frames, frames}));
  EXPECT_GT(shown, 500);
  EXPECT_EQ(Current_Picture(decoder), Picture_Of(large));
  EXPECT_NE(Rig_Window_Color(window, 50, 30), 0u);
}

TEST_F(PluginTest, AnInstanceMayEndInItsDrawCallback) {
  static PluginTest* browser;
  browser = this;
  for (const bool painting : {false, true}) {
    const HWND drawn = Page_Window(page, 10, 20, 101, 64);
    const VelartoDrawCallback end = [](HWND shownIn, uintptr_t) { browser->End_Instance(), DestroyWindow(shownIn); };
    JDEC_register_draw_callback(Open(0, 1, drawn), end, 0);
    painting ? Pump() : Feed(Joined(std::vector<Bytes>(9, small.compact)));
    EXPECT_FALSE(instance.pdata || IsWindow(drawn));
    Stop();
  }
}

/** A draw callback runs in the middle of a frame. Whatever it does, the bytes after that frame wait until the frame is done. */
TEST_F(PluginTest, ThePumpIsNotEnteredAgainFromADrawCallback) {
  static PluginTest* browser;
  static int32_t depth, deepest;
  static const auto give = [](const Bytes& bytes) {
    return browser->plugin.write(&browser->instance, &browser->stream, 0, (int32_t)bytes.size(), const_cast<uint8_t*>(&bytes[0]));
  };
  browser = this;
  shown = depth = deepest = 0;
  JdecDecoder* const decoder = Open(0, 1, window);
  Pump();
  const VelartoDrawCallback reenter = [](HWND drawn, uintptr_t) {
    deepest = std::max(deepest, ++depth);
    if (++shown <= 3) give(browser->large.jfif);  // Must not post the pump's message either.
    Pump();
    SendMessageA(drawn, PumpMessage, 0, 0);
    --depth;
  };
  JDEC_register_draw_callback(decoder, reenter, 0);
  int32_t frames = 3;
  // More than the pump takes at once, less than makes the decoder skip pictures.
  for (size_t bytes = 0; bytes < 200000; bytes += small.compact.size(), ++frames) give(small.compact);
  Pump();
  EXPECT_EQ(deepest, 1);
  EXPECT_EQ(shown, frames);
  EXPECT_EQ(Current_Picture(decoder), Picture_Of(large)) << "written last";
}
