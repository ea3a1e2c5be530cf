// Coming and going of the library: what it reads from and writes to the registry, and that it leaves nothing behind.
#include "windows/shell/shell.h"

namespace {

constexpr char Connections1[] = "MaxConnectionsPer1_0Server", Connections2[] = "MaxConnectionsPerServer",
               Exclusions[] = "MimeExclusionListForCache";
const std::string Type = "video/x-orvistream";

struct ShellAttachTest : ShellTest {
  static std::optional<Bytes> Internet(const char* name) { return Value(HKEY_CURRENT_USER, InternetKey, name); }
  static void Set_Internet(const char* name, DWORD type, const std::optional<Bytes>& data) {
    Set_Value(HKEY_CURRENT_USER, InternetKey, name, type, data);
  }
  static void Come_And_Go() { FreeLibrary(LoadLibraryA("velarto.dll")); }
  /** The answer to a right click: 0 plain, 1 forwarded, OwnResult behind the menu. */
  LRESULT Mode() {
    Load();
    EXPECT_EQ(Page_Open(&page, &plugin), NPERR_NO_ERROR);
    EXPECT_EQ(Page_Set_Window(&page, window), NPERR_NO_ERROR);
    steps.push_back([] { return Find_Menu() && PostMessageA(Find_Menu(), WM_COMMAND, IDCANCEL, 0); });
    const LRESULT answer = SendMessageA(window, WM_RBUTTONDOWN, 0, 0);
    steps.clear();
    Close();
    return answer;
  }
};

TEST_F(ShellAttachTest, RaisesTheBrowsersConnections) {
  const struct {
    std::optional<DWORD> first;
    DWORD second, firstAfter, secondAfter;
  } cases[] = {
      {std::nullopt, 4, 256, 256}, {255, 1000, 256, 256}, {256, 4, 256, 4}, {4096, 4, 4096, 4}, {0xFFFFFFFF, 4, 0xFFFFFFFF, 4}};
  for (const auto& [first, second, firstAfter, secondAfter] : cases) {
    Set_Internet(Connections1, REG_DWORD, first ? std::optional(Number(*first)) : std::nullopt);
    Set_Internet(Connections2, REG_DWORD, Number(second));
    for (int round = 0; round < 2; ++round) Come_And_Go();
    EXPECT_EQ(Internet(Connections1), Number(firstAfter));
    EXPECT_EQ(Internet(Connections2), Number(secondAfter));
  }
}

TEST_F(ShellAttachTest, TakesTheStreamOutOfTheBrowsersCache) {
  const auto list = [](size_t size) { return std::string(size - 1, 'a'); };  // As the registry counts, with the zero.
  const std::pair<std::string, std::string> cases[] = {{"abc", "abc " + Type},
                                                       {"", " " + Type},
                                                       {"x" + Type + "y", "x" + Type + "y"},
                                                       {list(2027), list(2027) + " " + Type},
                                                       {list(2028), list(2028)},
                                                       {list(3000), list(3000)}};
  for (const auto& [before, after] : cases) {
    Set_Internet(Exclusions, REG_SZ, Text(before));
    for (int round = 0; round < 2; ++round) Come_And_Go();
    EXPECT_EQ(Internet(Exclusions), Text(after)) << before.size();
  }
  Set_Internet(Exclusions, REG_SZ, std::nullopt);
  Come_And_Go();
  EXPECT_FALSE(Internet(Exclusions)) << "a missing list stays missing";
}

TEST_F(ShellAttachTest, ReadsTheMouseFromTheMakersKey) {
  const auto mode = [&](std::optional<Bytes> speed, std::optional<Bytes> left, std::optional<Bytes> right) {
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Decoder_Speed", REG_BINARY, speed);
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_LButton", REG_BINARY, left);
    Set_Value(HKEY_LOCAL_MACHINE, MakerKey, "Mouse_RButton", REG_BINARY, right);
    return Mode();
  };
  const std::optional<Bytes> none;
  EXPECT_EQ(mode(none, none, none), 0);
  EXPECT_EQ(mode(none, Number(1), none), 1);
  EXPECT_EQ(mode(none, Number(0x101), Number(0)), 1);
  EXPECT_EQ(mode(none, Number(0), Number(0x201)), OwnResult);
  EXPECT_EQ(mode(none, Bytes{0x31}, Bytes{0}), 0) << "a text's first letter is no 1";
  EXPECT_EQ(mode(none, Bytes(5, 1), Number(0)), 0) << "longer than four bytes";
  // A short value leaves little room for those that are read after it.
  EXPECT_EQ(mode(Bytes{9}, Number(1), none), 0);
  EXPECT_EQ(mode(Bytes{9}, Bytes{1}, Bytes{0}), 1);
  EXPECT_EQ(mode(Bytes{9, 9}, Bytes{1}, Bytes{1, 0}), 1);
  mode(none, none, none);
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, MakerKey);
  EXPECT_EQ(Mode(), 0) << "without the key";
}

TEST_F(ShellAttachTest, FiftyTimesInAPageItLeavesNoHandle) {
  std::array<DWORD, 3> counts[2] = {};
  for (int round = 0; round < 54; ++round) {
    Open(0, 1);
    Feed(frame);
    Close();
    if (round < 3) continue;
    Pump_Messages(0);
    std::array<DWORD, 3>& count = counts[round > 3];
    count = {GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), 0};
    GetProcessHandleCount(GetCurrentProcess(), &count[2]);
  }
  EXPECT_EQ(counts[0], counts[1]);
  EXPECT_EQ(GetModuleHandleA("velarto.dll"), nullptr);
}

TEST_F(ShellAttachTest, HoldsMoreInstancesThanItLists) {
  constexpr size_t Instances = 1030, Listed = 1024;
  Set_Mouse(1, 0);
  Load();
  std::vector<Page> pages(Instances);
  for (Page& opened : pages) ASSERT_EQ(Page_Open(&opened, &plugin), NPERR_NO_ERROR);
  // The last of those listed is found by its window, the first of the others is not: its window only gets the default.
  const auto answer = [&](Page* shown) {
    const HWND place = Page_Window(parent, 0, 0, 96, 64);
    EXPECT_EQ(Page_Set_Window(shown, place), NPERR_NO_ERROR);
    const LRESULT result = SendMessageA(place, WM_RBUTTONDOWN, 0, 0);
    Page_Close(shown);
    DestroyWindow(place);
    return result;
  };
  EXPECT_EQ(answer(&pages[Listed - 1]), 1);
  EXPECT_EQ(answer(&pages[Listed]), 0);
  // A slot that is free again is taken by the next.
  Page late = {};
  ASSERT_EQ(Page_Open(&late, &plugin), NPERR_NO_ERROR);
  EXPECT_EQ(answer(&late), 1);
  for (Page& opened : pages) {
    if (opened.instance.pdata) Page_Close(&opened);
  }
}

}  // namespace
