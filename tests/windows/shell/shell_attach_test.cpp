// Loading and unloading the library: what it reads from and writes to the registry, how its window then handles the mouse and
// asks the browser, and that nothing is left over.
#include "windows/shell/shell.h"

namespace {

struct ShellAttachTest : ShellTest {
  static void Come_And_Go() { FreeLibrary(LoadLibraryA("velarto.dll")); }
  /** The answer to a right click, and whose procedure got it. */
  std::pair<LRESULT, HWND> Mode() {
    Show(window);
    seenBy = nullptr;
    steps.push_back([] { return Find_Menu() && PostMessageA(Find_Menu(), WM_COMMAND, IDCANCEL, 0); });
    const LRESULT answer = SendMessageA(window, WM_RBUTTONDOWN, 0, 0);
    steps.clear();
    Close();
    return {answer, seenBy};
  }
};

const std::optional<Bytes> none;

// The plug-in's own tests try more values; here they are in Windows' registry.

TEST_F(ShellAttachTest, TheBrowserIsBroughtToWhatLiveVideoNeeds) {
  constexpr char Connections[] = "MaxConnectionsPer1_0Server", Exclusions[] = "MimeExclusionListForCache";
  const std::string added = " video/x-orvistream", longest(2026, 'a');
  const std::tuple<const char*, DWORD, std::optional<Bytes>, std::optional<Bytes>> cases[] = {
      {Connections, REG_DWORD, none, Number(256)},
      {Connections, REG_DWORD, Number(255), Number(256)},
      {Connections, REG_DWORD, Number(4096), Number(4096)},
      {Exclusions, REG_SZ, Text("abc"), Text("abc" + added)},
      {Exclusions, REG_SZ, Text(longest), Text(longest + added)},
      {Exclusions, REG_SZ, Text(longest + 'a'), Text(longest + 'a')},
      {Exclusions, REG_SZ, Text(std::string(2999, 'a')), Text(std::string(2999, 'a'))},
      {Exclusions, REG_SZ, none, none}};
  for (const auto& [name, type, before, after] : cases) {
    Set_Value(HKEY_CURRENT_USER, InternetKey, name, type, before);
    for (int round = 0; round < 2; ++round) Come_And_Go();
    EXPECT_TRUE(Value(HKEY_CURRENT_USER, InternetKey, name) == after)
        << name << " of " << (before ? before->size() : 0) << " bytes";
  }
}

TEST_F(ShellAttachTest, ReadsTheMouseFromTheMakersKey) {
  const auto mode = [&](std::optional<Bytes> speed, std::optional<Bytes> left, std::optional<Bytes> right) {
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Decoder_Speed", REG_BINARY, speed);
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_LButton", REG_BINARY, left);
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_RButton", REG_BINARY, right);
    return Mode();
  };
  const auto plain = std::pair(LRESULT{0}, HWND{}), forwarded = std::pair(LRESULT{1}, parent),
             menu = std::pair(OwnResult, window);
  EXPECT_EQ(mode(none, Number(0x101), Number(0)), forwarded);
  EXPECT_EQ(mode(none, Number(0), Number(0x201)), menu);
  EXPECT_EQ(mode(none, Bytes(5, 1), Number(0)), plain) << "longer than four bytes";
  // The size of a short value limits those that are read after it.
  EXPECT_EQ(mode(Bytes{9}, Number(1), none), plain);
  EXPECT_EQ(mode(Bytes{9}, Bytes{1}, Bytes{0}), forwarded);
  EXPECT_EQ(mode(none, none, none), plain);
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, MakerKey);
  EXPECT_EQ(Mode(), plain) << "without the key";
}

TEST_F(ShellAttachTest, TheBrowserIsAskedByMessages) {
  Open(0, 0);
  SendMessageA(window, 1125, 0, 0);
  EXPECT_EQ(page.wanted, std::vector<std::string>{"http://camera/live"});
  EXPECT_TRUE(page.streaming);
  SendMessageA(window, 1124, 0, 0);
  EXPECT_FALSE(page.streaming);
  Close();
  EXPECT_EQ(SendMessageA(window, WM_RBUTTONUP, 0, 0), OwnResult) << "after the instance, the window has its own procedure again";
}

TEST_F(ShellAttachTest, ComesAndGoesWithItsWindowWithoutLeavingObjects) {
  // Browsers keep it loaded; else the tooltip's procedure would be unloaded before its window is destroyed.
  LoadLibraryA("comctl32.dll");
  HandleCounts early = {};
  for (int round = 0; round < 6; ++round) {
    {
      const Window own(160, 120);  // Destroys the tooltip too, after the plug-in has left.
      Show(own.handle);
      Feed(frame);
      Close();
    }
    if (round == 1) early = Count_Handles();
  }
  Expect_None_Left(early, 4);
  EXPECT_EQ(GetModuleHandleA("velarto.dll"), nullptr);
}

}  // namespace
