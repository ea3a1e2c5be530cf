#include "plugin/browser.h"
#include "plugin/settings.h"

constexpr char InternetKey[] = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr char Limit[] = "MaxConnectionsPer1_0Server", OtherLimit[] = "MaxConnectionsPerServer",
               List[] = "MimeExclusionListForCache";
using Value = std::optional<Bytes>;
const Value none, low = Bytes{255, 0, 0, 0}, raised = Bytes{0, 1, 0, 0}, one = Bytes{1, 0, 0, 0}, wide = Bytes(3000, 'x');

static void Set(const char* key, const char* name, const Value& value) {
  if (value) Rig_Set_Registry(key, name, REG_SZ, *value);
}
static Value Text(const std::string& text) { return Bytes(text.c_str(), text.c_str() + text.size() + 1); }

/** What a value becomes. The second time all is well. */
static Value Updated(const char* name, const Value& before) {
  Rig_Forget_Registry();
  Set(InternetKey, OtherLimit, one);
  Set(InternetKey, name, before);
  EXPECT_EQ(Update_Internet_Settings() + Update_Internet_Settings(), 2);
  return Rig_Registry(InternetKey, name);
}

TEST(Attach, TheBrowserIsBroughtToWhatLiveVideoNeeds) {
  const Value more = Bytes{0, 16, 0, 0}, most = Bytes(4, 255);
  for (const auto& [before, after] :
       {std::pair{none, raised}, {low, raised}, {raised, raised}, {more, more}, {most, most}, {wide, raised}}) {
    EXPECT_EQ(Updated(Limit, before), after);
    EXPECT_EQ(Rig_Registry(InternetKey, OtherLimit), before == after ? one : raised);
  }
  const std::string added = std::string(" ") + MIME_TYPE_TEXT, held = "a" + added + "2 b", longest(2026, 'x');
  for (const Value& same : {none, Value(Bytes()), Text(held), wide, Text(longest + 'x')}) EXPECT_EQ(Updated(List, same), same);
  for (const char* text : {"", "a/b", longest.c_str()}) EXPECT_EQ(Updated(List, Text(text)), Text(text + added));
  EXPECT_EQ(Updated(List, Bytes{'a', 'b'}), Text("ab" + added));
  Rig_Forget_Registry();
  Rig_Fail(RigStep::CreateRegistryKey, 0, 1);
  EXPECT_EQ(Update_Internet_Settings(), 0);
  Rig_Fail(RigStep::SetRegistryValue, 0, 1);
  EXPECT_EQ(Update_Internet_Settings(), 1);
  EXPECT_EQ(std::pair(Rig_Registry(InternetKey, Limit), Rig_Registry(InternetKey, OtherLimit)), std::pair(none, raised));
}

TEST(Attach, MouseAndSpeedAreReadThroughOneSize) {
  const std::pair<std::vector<Value>, std::vector<int32_t>> cases[] = {
      {{none, none, none}, {-2, 0, 0, 0}},
      {{Bytes{0xFD, 1}, Bytes{1}, Bytes{1}}, {-3, 1, 1, 1}},
      {{low, one, none}, {-1, 1, 0, 0}},
      {{none, Bytes{1, 1, 0, 0}, Text("1")}, {-2, 1, 0, 1}},
      {{Bytes{7}, one, one}, {7, 0, 1, 1}},  // Refused, but then there is room for four again.
      {{Bytes(9, 1), Bytes(8, 1), Bytes{2}}, {-2, 0, 0, 1}}};
  for (const auto& [values, expected] : cases) {
    Rig_Forget_Registry();
    const char* const names[] = {"Decoder_Speed", "Mouse_LButton", "Mouse_RButton"};
    for (size_t i = 0; i < 3; ++i) Set(MakerKeyPath, names[i], values[i]);
    const MakerSettings read = Read_Maker_Settings();
    EXPECT_EQ((std::vector{read.decoderSpeed, read.mouseLButton, read.mouseRButton, int32_t{read.rightButtonRead}}), expected);
  }
}

TEST(Attach, AttachingAndDetachingLeavesNothing) {
  Set(MakerKeyPath, "Mouse_RButton", one);
  const int32_t alive = Rig_Objects_Alive();
  EXPECT_FALSE(Library_Attach(nullptr));
  for (int32_t i = 0; i < 50; ++i) {
    if (i == 9) Rig_Fail(RigStep::LoadBitmap, 1, 1);
    EXPECT_TRUE(Library_Attach(Module_Handle()));
    EXPECT_EQ(Rig_Objects_Alive(), alive + (i == 9 ? 3 : 4)) << "button faces and the hook";
    PostMessageA(nullptr, WM_KEYDOWN, VK_SPACE, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE)) << "handed on";
    Library_Detach();
    EXPECT_EQ(Rig_Objects_Alive(), alive);
  }
}
