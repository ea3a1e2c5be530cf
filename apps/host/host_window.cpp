#include "apps/host/host.h"
#include "apps/velarto/sources/source.h"

#include <algorithm>

/** Of the page around the plug-in's window. */
static constexpr int Margin = 16;

static constexpr const char *PageClass = "velarto page", *PluginClass = "velarto plug-in", *InboxClass = "velarto inbox";

static Host* Host_Of(HWND window) { return reinterpret_cast<Host*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

static RECT Plugin_Place(HWND page) {
  RECT client = {};
  GetClientRect(page, &client);
  return {Margin, Margin, std::max<LONG>(client.right - Margin, Margin), std::max<LONG>(client.bottom - Margin, Margin)};
}

static void On_Page_Size(Host* host) {
  const RECT place = Plugin_Place(host->top);
  if (!host->shown || place.right <= place.left || place.bottom <= place.top) return;
  MoveWindow(host->shown, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
  Page_Set_Window(&host->page, host->shown);
}

/** The page around a plug-in's window; a plug-in that has the whole window leaves no page. */
static LRESULT CALLBACK Page_Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Host* const host = Host_Of(window);
  if (host && message == WM_SIZE) On_Page_Size(host);
  if (host && message == WM_DESTROY) Host_Leave(host);
  return DefWindowProcA(window, message, wParam, lParam);
}

/** Gets BytesMessage while a dialog of the plug-in runs the message loop. As a child window the inbox is destroyed after the page
 * has received WM_DESTROY, and before the page is gone. */
static LRESULT CALLBACK Inbox_Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Host* const host = Host_Of(window);
  if (host && message == BytesMessage) Host_Deliver(host);
  if (host && message == WM_DESTROY) Host_Leave(host);
  return DefWindowProcA(window, message, wParam, lParam);
}

static void Register_Class(const char* name, WNDPROC procedure, HBRUSH background) {
  WNDCLASSA windowClass = {};
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = background;
  windowClass.lpszClassName = name;
  RegisterClassA(&windowClass);
}

static HWND Make_Child(const Host& host, const char* name, DWORD style, const RECT& place) {
  return CreateWindowExA(0, name, "", WS_CHILD | style, place.left, place.top, place.right - place.left, place.bottom - place.top,
                         host.top, nullptr, GetModuleHandleA(nullptr), nullptr);
}

bool Host_Open_Windows(Host* host, std::string* error) {
  const HostOptions& options = host->options;
  Register_Class(PageClass, Page_Procedure, reinterpret_cast<HBRUSH>(static_cast<uintptr_t>(COLOR_WINDOW + 1)));
  Register_Class(PluginClass, DefWindowProcA, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  Register_Class(InboxClass, Inbox_Procedure, nullptr);
  RECT frame = {0, 0, options.width, options.height};
  AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
  const std::string title = "velarto-host - " + Source_Title(options.source);
  host->top = CreateWindowExA(0, options.child ? PageClass : PluginClass, title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                              CW_USEDEFAULT, frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
  host->inbox = host->top ? Make_Child(*host, InboxClass, 0, {}) : nullptr;
  host->shown = options.child && host->top ? Make_Child(*host, PluginClass, WS_VISIBLE, Plugin_Place(host->top)) : host->top;
  if (!host->inbox || !host->shown) {
    if (host->top) DestroyWindow(host->top);
    *error = "can't open a window";
    return false;
  }
  SetWindowLongPtrA(host->inbox, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(host));
  if (options.child) SetWindowLongPtrA(host->top, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(host));
  ShowWindow(host->top, SW_SHOW);
  return true;
}
