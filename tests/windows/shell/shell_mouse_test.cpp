// What the window does of the mouse in its three modes, and what it tells the browser.
#include "windows/shell/shell.h"

namespace {

using Seen = std::vector<std::array<LONG_PTR, 4>>;

/** Gives the window a right click and the wish for a cursor; adds up what its procedure answers. */
LRESULT Right_Click(HWND window) {
  return SendMessageA(window, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(7, 9)) +
         SendMessageA(window, WM_RBUTTONUP, 0, MAKELPARAM(7, 9));
}
LONG_PTR Id(HWND window) { return reinterpret_cast<LONG_PTR>(window); }

struct ShellMouseTest : ShellTest {
  LRESULT Poke() { return SendMessageA(window, WM_USER + 1, 1, 2); }
};

TEST_F(ShellMouseTest, PlainItOnlyAsksTheBrowser) {
  Open(0, 0);
  EXPECT_EQ(Right_Click(window) + Poke(), 0);
  EXPECT_TRUE(seen.empty()) << "its own procedure is not called";
  // By default the parent is asked for a cursor.
  SendMessageA(window, WM_SETCURSOR, Id(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
  EXPECT_TRUE(seen == (Seen{{Id(parent), WM_SETCURSOR, Id(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)}}));
  SendMessageA(window, 1125, 0, 0);
  EXPECT_EQ(page.wanted, std::vector<std::string>{"http://camera/live"});
  EXPECT_TRUE(page.streaming);
  SendMessageA(window, 1124, 0, 0);
  EXPECT_FALSE(page.streaming);
  Close();
  EXPECT_EQ(Poke(), OwnResult) << "the instance gone, the window is its own again";
}

TEST_F(ShellMouseTest, ForwardingTheParentGetsTheRightButton) {
  Open(1, 0);
  EXPECT_EQ(Right_Click(window), 2);
  EXPECT_TRUE(seen == (Seen{{Id(parent), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(7, 9)},
                            {Id(parent), WM_RBUTTONUP, 0, MAKELPARAM(7, 9)}}));
  EXPECT_EQ(SendMessageA(window, WM_SETCURSOR, Id(window), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)), 1);
  seen.clear();
  EXPECT_EQ(Poke(), OwnResult);
  EXPECT_TRUE(seen == (Seen{{Id(window), WM_USER + 1, 1, 2}}));
}

TEST_F(ShellMouseTest, WithTheMenuTheClickGoesOnToTheWindow) {
  Open(0, 1);
  Then_Press(1002);
  EXPECT_EQ(Right_Click(window), 2 * OwnResult);
  EXPECT_EQ(seen.size(), 2u);
}

}  // namespace
