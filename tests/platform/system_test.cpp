#include "platform/platform_test.h"

#include <string>
#include <thread>

namespace {

using SystemTest = PlatformTest;

TEST_F(SystemTest, AMutexIsRecursiveAndExcludesOtherThreads) {
  HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
  EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
  for (const DWORD expected : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_TIMEOUT}, DWORD{WAIT_OBJECT_0}}) {
    std::thread([&] {
      EXPECT_EQ(WaitForSingleObject(mutex, 0), expected);
      EXPECT_EQ(ReleaseMutex(mutex) != 0, expected == WAIT_OBJECT_0);
    }).join();
    EXPECT_EQ(ReleaseMutex(mutex) != 0, expected == WAIT_TIMEOUT);
  }
  EXPECT_TRUE(CloseHandle(mutex));
}

TEST_F(SystemTest, FilesAndModules) {
  const std::string path = testing::TempDir() + "velarto-platform-test.bin";
  DWORD count = 0;
  for (const std::string& text : {std::string("longer before"), std::string("abcdefg")}) {  // The second one replaces the first.
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(WriteFile(file, text.data(), 3, &count, nullptr));
    EXPECT_EQ(count, 3u);
    EXPECT_TRUE(WriteFile(file, text.data() + 3, static_cast<DWORD>(text.size()) - 3, &count, nullptr));
    EXPECT_TRUE(CloseHandle(file));
  }
  HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  char read[16] = {};
  for (const DWORD expected : {7u, 0u}) {
    EXPECT_TRUE(ReadFile(file, read, sizeof read, &count, nullptr));
    EXPECT_EQ(count, expected);
  }
  EXPECT_STREQ(read, "abcdefg");
  EXPECT_TRUE(CloseHandle(file));
  std::remove(path.c_str());
  EXPECT_EQ(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), INVALID_HANDLE_VALUE);

  HMODULE module = LoadLibraryA("ddraw.dll");
  EXPECT_NE(GetProcAddress(module, "DirectDrawEnumerateExA"), nullptr);
  EXPECT_EQ(GetProcAddress(module, "GetMonitorInfoA"), nullptr);
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_NE(GetProcAddress(GetModuleHandleA("USER32"), "GetMonitorInfoA"), nullptr);
}

TEST_F(SystemTest, PostedMessagesComeFirstThenQuitThenPaint) {
  HWND window = Make_Window(20, 20, 50, 40);
  InvalidateRect(window, nullptr, FALSE);
  PostQuitMessage(7);
  std::thread([=] { PostMessageA(window, WM_APP + 1, 11, 12); }).join();
  PostMessageA(window, WM_APP + 2, 0, 0);
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0)) DispatchMessageA(&message);
  EXPECT_EQ(message.wParam, 7u);
  Pump();
  ASSERT_EQ(seenMessages.size(), 3u);
  const UINT order[] = {WM_APP + 1, WM_APP + 2, WM_PAINT};
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(seenMessages[i].message, order[i]);
  EXPECT_EQ(seenMessages[0].wParam, 11u);
  EXPECT_EQ(seenMessages[0].lParam, 12);
}

TEST_F(SystemTest, MessagesAreRegisteredByName) {
  const UINT first = RegisterWindowMessageA("velarto test 1"), second = RegisterWindowMessageA("velarto test 2");
  EXPECT_TRUE(first >= 0xC000 && second >= 0xC000 && first != second);
  EXPECT_EQ(RegisterWindowMessageA("velarto test 1"), first);
}

WNDPROC procBefore;

LRESULT CALLBACK Second_Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_APP) return 42;
  return CallWindowProcA(procBefore, window, message, wParam, lParam);
}

TEST_F(SystemTest, AWindowsProcedureAndValuesAreReplaceable) {
  HWND window = Make_Window(20, 20, 50, 40);
  EXPECT_EQ(SetWindowLongPtrA(window, GWLP_USERDATA, 1234), 0);
  EXPECT_EQ(SetWindowLongPtrA(window, GWLP_USERDATA, 5), 1234);
  EXPECT_EQ(GetWindowLongPtrA(window, GWLP_USERDATA), 5);
  procBefore = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Second_Proc)));
  EXPECT_EQ(SendMessageA(window, WM_APP, 0, 0), 42);
  EXPECT_EQ(SendMessageA(window, WM_APP + 1, 0, 0), 0);
  EXPECT_EQ(seenMessages.size(), 1u) << "the first procedure got the second message alone";
  SetWindowTextA(window, "a title");
  char text[4];
  EXPECT_EQ(GetWindowTextA(window, text, sizeof text), 3);
  EXPECT_STREQ(text, "a t");

  SendMessageA(window, WM_CLOSE, 0, 0);
  EXPECT_EQ(seenMessages.back().message, UINT{WM_DESTROY});
  EXPECT_FALSE(IsWindow(window));
}

}  // namespace
