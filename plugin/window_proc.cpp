#include "plugin/window_proc.h"

#include "display/palette.h"
#include "plugin/attach.h"
#include "plugin/browser.h"
#include "plugin/entry.h"
#include "plugin/instances.h"
#include "plugin/menu.h"
#include "plugin/pump.h"
#include "plugin/recording.h"
#include "resources/resources.h"

#include "platform/win32.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr UINT_PTR TooltipId = 111;

/** A message to the window of an instance. */
struct Message {
  NPP instance;
  JdecDecoder* decoder;
  HWND window;
  UINT number;
  WPARAM wParam;
  LPARAM lParam;
};

/** What follows the handling of a message: the default procedure, the window's own procedure, or the result 1. */
enum class End { Default, Chain, One };

/** Calls the window's own procedure, or the default one without it. */
LRESULT Chain(const Message& message, WNDPROC previous) {
  if (previous) return CallWindowProcA(previous, message.window, message.number, message.wParam, message.lParam);
  return DefWindowProcA(message.window, message.number, message.wParam, message.lParam);
}

End On_Paint(const Message& message) {
  PAINTSTRUCT paint;
  BeginPaint(message.window, &paint);
  Window_Show_Again(message.decoder, message.window);
  EndPaint(message.window, &paint);
  return End::Default;
}

End On_End_Stream(const Message& message) {
  NPStream* const stream = message.decoder->npStream;
  if (stream && message.decoder->npInstance) Browser_Destroy_Stream(message.decoder->npInstance, stream, NPRES_DONE);
  return End::Chain;
}

End On_Get_URL(const Message& message) {
  const JdecDecoder* const decoder = message.decoder;
  if (!decoder->npInstance || !decoder->urlBuffer) return End::Chain;
  // A copy: the browser may end the instance, or start a stream of another URL, before it has read this one.
  char url[UrlSize];
  std::memcpy(url, decoder->urlBuffer, sizeof url);
  Browser_Get_URL(decoder->npInstance, url, nullptr);
  return End::Chain;
}

End On_Set_Cursor(const Message& message) {
  const bool recording = message.decoder->recordFile && message.decoder->recordState == RecordWriting;
  SetCursor(recording ? cursorRecording : cursorNormal);
  return End::One;
}

/** Gives the tooltip its text. */
End On_Notify(const Message& message) {
  auto* const asked = reinterpret_cast<NMTTDISPINFOA*>(message.lParam);
  if (!asked || asked->hdr.code != TTN_NEEDTEXTA || mouseRButton != 1) return End::Chain;
  char text[256] = "";
  LoadStringA(moduleHandle, message.decoder->recordFile ? SavingTextId : IdleTextId, text, sizeof text);
  const size_t length = std::min(std::strlen(text), sizeof asked->szText - 1);
  std::memcpy(asked->szText, text, length);
  asked->szText[length] = 0;
  asked->hinst = nullptr;
  return End::Chain;
}

End On_Command(const Message& message) {
  if (message.wParam == StartRecordingCommand) Record_Start(message.window, message.decoder);
  if (message.wParam == StopRecordingCommand) Record_Stop(message.window, message.decoder);
  return End::Chain;
}

/** With the right button's setting off, its messages go to the parent window. */
End Send_To_Parent(const Message& message) {
  SendMessageA(GetParent(message.window), message.number, message.wParam, message.lParam);
  return End::One;
}

End On_Right_Down(const Message& message) {
  if (mouseRButton == 0) return Send_To_Parent(message);
  Record_Menu_Open(message.window);
  return End::Chain;
}

End On_Right_Up(const Message& message) { return mouseRButton == 0 ? Send_To_Parent(message) : End::Chain; }

End On_Query_Palette(const Message& message) {
  Display_Reload_Palette(message.decoder->display);
  return End::Chain;
}

HWND Parent_Of(HWND window) { return window ? GetParent(window) : nullptr; }

/** A change by this window, or by one with the same parent, keeps the colours in place. */
End On_Palette_Changed(const Message& message) {
  const auto changer = reinterpret_cast<HWND>(message.wParam);
  if (changer == message.window || Parent_Of(changer) == Parent_Of(message.window)) return End::Chain;
  return On_Query_Palette(message);
}

struct MessageAction {
  UINT number;
  bool plainToo;  ///< Also with both mouse settings off.
  End (*act)(const Message& message);
};
constexpr MessageAction messageActions[] = {
    {WM_PAINT, true, On_Paint},
    {EndStreamMessage, true, On_End_Stream},
    {GetUrlMessage, true, On_Get_URL},
    {WM_SETCURSOR, false, On_Set_Cursor},
    {WM_NOTIFY, false, On_Notify},
    {WM_COMMAND, false, On_Command},
    {WM_RBUTTONDOWN, false, On_Right_Down},
    {WM_RBUTTONUP, false, On_Right_Up},
    {WM_QUERYNEWPALETTE, false, On_Query_Palette},
    {WM_PALETTECHANGED, false, On_Palette_Changed},
};

void Create_Tooltip(HWND window) {
  const auto module = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
  InitCommonControls();
  const HWND tooltip = CreateWindowExA(0, TOOLTIPS_CLASSA, nullptr, TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                       CW_USEDEFAULT, window, nullptr, module, nullptr);
  TOOLINFOA tool = {};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_SUBCLASS | TTF_CENTERTIP;
  tool.hwnd = window;
  tool.uId = TooltipId;
  GetClientRect(window, &tool.rect);
  tool.hinst = module;
  tool.lpszText = LPSTR_TEXTCALLBACKA;
  if (tooltip) SendMessageA(tooltip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace

void Window_Take_Over(JdecDecoder* decoder) {
  if (decoder->prevWndProc) return;
  if (const JdecDecoder* const partner = Find_Partner(decoder)) {
    decoder->prevWndProc = partner->prevWndProc;
  } else {
    decoder->prevWndProc = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(decoder->window, GWLP_WNDPROC));
    // Left by an instance that the browser never ended. The window's own is not known any more.
    if (decoder->prevWndProc == Plugin_Window_Proc) decoder->prevWndProc = DefWindowProcA;
    SetWindowLongPtrA(decoder->window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Plugin_Window_Proc));
    Create_Tooltip(decoder->window);
  }
  Pump_Ask(decoder);  // Bytes may have waited in the ring.
}

void Window_Give_Back(JdecDecoder* decoder) {
  if (!decoder->prevWndProc) return;
  Pump_Forget(decoder);
  if (!Find_Partner(decoder)) {
    SetWindowLongPtrA(decoder->window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(decoder->prevWndProc));
  }
  decoder->prevWndProc = nullptr;
}

void Window_Show_Again(JdecDecoder* decoder, HWND window) {
  if (!decoder->display) return;
  DecoderHold hold(decoder);
  RECT client = {};
  POINT origin = {};
  GetClientRect(window, &client);
  ClientToScreen(window, &origin);
  OffsetRect(&client, origin.x, origin.y);
  const int32_t place[4] = {client.left, client.top, client.right, client.bottom};
  JDEC_Access_SrcRect(decoder, place);
}

LRESULT CALLBACK Plugin_Window_Proc(HWND window, UINT number, WPARAM wParam, LPARAM lParam) {
  const NPP instance = Find_Instance_By_Window(window);
  if (!instance) return DefWindowProcA(window, number, wParam, lParam);
  const Message message = {instance, Instance_Decoder(instance), window, number, wParam, lParam};
  if (Pump_Handle(window, number, wParam, lParam)) return 0;
  // A menu or file dialog runs a message loop, in which the instance may end: its procedure is read before.
  const WNDPROC previous = message.decoder->prevWndProc;
  const bool plain = mouseLButton == 0 && mouseRButton == 0;
  End end = End::Chain;
  for (const MessageAction& action : messageActions) {
    if (action.number == number && (action.plainToo || !plain)) end = action.act(message);
  }
  if (end == End::One) return 1;
  if (end == End::Default || plain) return DefWindowProcA(window, number, wParam, lParam);
  return Chain(message, previous);
}
