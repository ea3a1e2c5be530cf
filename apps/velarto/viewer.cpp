#include "apps/velarto/viewer.h"

#include "apps/velarto/output.h"
#include "apps/velarto/picture.h"
#include "apps/velarto/sources/source.h"
#include "display/present.h"

#include "platform/win32.h"

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>

static constexpr const char* ClassName = "velarto viewer";
static constexpr UINT FrameMessage = WM_APP;
/** Milliseconds to wait for a picture before a window is opened without one. */
static constexpr int FirstPictureWait = 300;
static constexpr int WaitingWidth = 640, WaitingHeight = 480;

struct Viewer {
  const ViewerOptions& options;
  std::shared_ptr<Feed> feed;
  HWND window = nullptr;
  JdecDecoder* decoder = nullptr;
  int32_t width = 0, height = 0;  ///< Of the picture, 0 before the first.
  int64_t shown = 0, passed = 0;  ///< Frames shown, and those with the skipped ones.
  Overlays overlays;
  int32_t quality = 0;
  double rate = 0;         ///< Frames a second, 0 while not known;
  DWORD rateStart = 0;     ///< counted from this tick,
  int64_t rateFrames = 0;  ///< and this value of `shown` on.
  bool paused = false, reconnecting = false, ended = false, keysInTitle = false;
  bool fullScreen = false;
  LONG_PTR windowedStyle = 0;
  RECT windowedRect = {};
  int code = ExitDone;
};

static void Update_Title(const Viewer& viewer);
static void Repaint(Viewer* viewer);

/* ---- Keys ----------------------------------------------------------------------------------------------------------------- */

static void Quit(Viewer* viewer) { DestroyWindow(viewer->window); }

static void Toggle_Pause(Viewer* viewer) {
  viewer->paused = !viewer->paused;
  Feed_Pause(viewer->feed.get(), viewer->paused);
  // Frames queued during the pause are still there; they are announced again.
  if (!viewer->paused) Feed_Notify(viewer->feed.get(), viewer->window, FrameMessage);
  Update_Title(*viewer);
}

static void Toggle_Full_Screen(Viewer* viewer) {
  viewer->fullScreen = !viewer->fullScreen;
  RECT place = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  auto style = static_cast<LONG_PTR>(WS_POPUP | WS_VISIBLE);
  if (viewer->fullScreen) {
    viewer->windowedStyle = GetWindowLongPtrA(viewer->window, GWL_STYLE);
    GetWindowRect(viewer->window, &viewer->windowedRect);
  } else {
    place = viewer->windowedRect;
    style = viewer->windowedStyle;
  }
  SetWindowLongPtrA(viewer->window, GWL_STYLE, style);
  SetWindowPos(viewer->window, HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
               SWP_FRAMECHANGED);
}

/** A file name with the time of day, one that isn't taken yet. */
static std::string Snapshot_Path(const std::string& folder) {
  const std::time_t now = std::time(nullptr);
  char stamp[32] = "";
  std::strftime(stamp, sizeof stamp, "velarto-%Y%m%d-%H%M%S", std::localtime(&now));
  const auto path = std::filesystem::path(folder) / stamp;
  std::string name = path.string() + ".bmp";
  for (int i = 2; std::filesystem::exists(name); ++i) name = path.string() + "-" + std::to_string(i) + ".bmp";
  return name;
}

static void Take_Snapshot(Viewer* viewer) {
  if (viewer->shown == 0) return;
  const std::string path = Snapshot_Path(viewer->options.snapshots);
  std::string error;
  if (!Picture_Save(viewer->decoder, path, &error)) {
    Report(error);
    return;
  }
  std::fprintf(Output(), "saved %s\n", path.c_str());
  std::fflush(Output());
}

/** Changes the overlays and shows them at once; without a picture there are none. */
static void Change_Overlays(Viewer* viewer, void (*change)(Overlays* overlays, JdecDecoder* decoder)) {
  if (viewer->shown == 0) return;
  change(&viewer->overlays, viewer->decoder);
  Repaint(viewer);
}

static void Toggle_Grid(Viewer* viewer) { Change_Overlays(viewer, Overlays_Toggle_Layer); }
static void Toggle_Statistics(Viewer* viewer) { Change_Overlays(viewer, Overlays_Toggle_Statistics); }
static void Toggle_Motion(Viewer* viewer) { Change_Overlays(viewer, Overlays_Toggle_Motion); }
static void Toggle_Ptz(Viewer* viewer) { Change_Overlays(viewer, Overlays_Toggle_Ptz); }

static void Show_Keys(Viewer* viewer);

struct KeyAction {
  int key;  ///< Character, lower case.
  const char* name;
  const char* meaning;
  void (*act)(Viewer* viewer);
};
static constexpr KeyAction keyActions[] = {
    {'q', "q", "quit", Quit},
    {VK_ESCAPE, "Esc", "quit", Quit},
    {' ', "space", "pause", Toggle_Pause},
    {'f', "f", "full screen", Toggle_Full_Screen},
    {'s', "s", "snapshot", Take_Snapshot},
    {'g', "g", "grid", Toggle_Grid},
    {'i', "i", "statistics", Toggle_Statistics},
    {'m', "m", "motion search", Toggle_Motion},
    {'p', "p", "PTZ picture", Toggle_Ptz},
    {'h', "h", "keys", Show_Keys},
};

static std::string Key_List() {
  std::string list;
  for (const KeyAction& action : keyActions) {
    list += std::string(list.empty() ? "" : ", ") + action.name + ": " + action.meaning;
  }
  return list + ", arrows: move the rectangle, click: mark a cell";
}

static void Show_Keys(Viewer* viewer) {
  viewer->keysInTitle = !viewer->keysInTitle;
  if (viewer->keysInTitle) std::fprintf(Output(), "%s\n", Key_List().c_str());
  std::fflush(Output());
  Update_Title(*viewer);
}

static void Update_Title(const Viewer& viewer) {
  std::string title = Source_Title(viewer.options.feed.source);
  title += viewer.width > 0 ? " - " + std::to_string(viewer.width) + "x" + std::to_string(viewer.height) : " - waiting";
  if (viewer.quality > 0) title += " - quality " + std::to_string(viewer.quality);
  char rate[32] = "";
  std::snprintf(rate, sizeof rate, " - %.1f fps", viewer.rate);
  if (viewer.rate > 0) title += rate;
  if (viewer.paused) title += " - paused";
  if (viewer.reconnecting) title += " - reconnecting";
  if (Feed_State(viewer.feed.get(), nullptr) != FeedState::Running) title += " - ended";
  title += " - velarto";
  SetWindowTextA(viewer.window, viewer.keysInTitle ? Key_List().c_str() : title.c_str());
}

/* ---- Pictures ------------------------------------------------------------------------------------------------------------- */

/** Client size for a picture: its own width, with the height that it is shown at; halved until it fits the screen. */
static SIZE Client_Size(int32_t width, int32_t height) {
  RECT area = {0, 0, WaitingWidth, WaitingHeight};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  SIZE size = {width, Target_Height(width, width, height)};
  while (size.cx > area.right - area.left || size.cy > area.bottom - area.top) size = {size.cx / 2, size.cy / 2};
  // Smaller pictures are not drawn.
  while (size.cx < 32 || size.cy < 32) size = {size.cx * 2 + 1, size.cy * 2 + 1};
  return {std::min(size.cx, area.right - area.left), std::min(size.cy, area.bottom - area.top)};
}

static void Fit_Window(Viewer* viewer) {
  const SIZE client = Client_Size(viewer->width, viewer->height);
  RECT frame = {0, 0, client.cx, client.cy};
  AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
  SetWindowPos(viewer->window, HWND_TOP, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

static void Fail(Viewer* viewer, const std::string& error) {
  viewer->code = Report(error);
  DestroyWindow(viewer->window);
}

/** Fits window and decoder to pictures of that size. False on a failure; the viewer ends then. */
static bool Adopt_Size(Viewer* viewer, int32_t width, int32_t height) {
  if (width == viewer->width && height == viewer->height) return true;
  viewer->width = width;
  viewer->height = height;
  if (!viewer->fullScreen) Fit_Window(viewer);
  Update_Title(*viewer);
  if (viewer->decoder) return true;
  viewer->decoder = JDEC_New(width, height);
  if (JDEC_Draw_Init(viewer->decoder, viewer->window)) return true;
  Fail(viewer, "this screen can't show the picture");
  return false;
}

/** Once a second the frame rate in the title is updated; a new quality shows at once. */
static void Count_Frame(Viewer* viewer) {
  constexpr DWORD Period = 1000;
  ++viewer->shown;
  const DWORD now = GetTickCount(), elapsed = now - viewer->rateStart;
  const int32_t quality = JDEC_Get_Quality(viewer->decoder);
  const bool counted = viewer->rateFrames > 0 && elapsed >= Period;
  if (counted) viewer->rate = static_cast<double>(viewer->shown - viewer->rateFrames) * 1000 / elapsed;
  if (counted || viewer->rateFrames == 0) {
    viewer->rateStart = now;
    viewer->rateFrames = viewer->shown;
  }
  if (!counted && quality == viewer->quality) return;
  viewer->quality = quality;
  Update_Title(*viewer);
}

static void Show_Frame(Viewer* viewer, const FedFrame& fed) {
  const bool first = !viewer->decoder;
  const bool newSize = fed.frame.width != viewer->width || fed.frame.height != viewer->height;
  if (!Frame_Decodable(fed.frame) || !Adopt_Size(viewer, fed.frame.width, fed.frame.height)) return;
  if (first) Overlays_Apply(viewer->overlays, viewer->decoder);
  Picture_Decode(viewer->decoder, fed.frame);
  Count_Frame(viewer);
  if (newSize && !first) {
    // With the new size came a new display.
    Overlays_Apply(viewer->overlays, viewer->decoder);
    Repaint(viewer);
  }
  viewer->passed += 1 + fed.skipped;
  if (viewer->options.frames > 0 && viewer->passed >= viewer->options.frames) DestroyWindow(viewer->window);
}

static void Repaint(Viewer* viewer) {
  RECT client = {};
  GetClientRect(viewer->window, &client);
  POINT origin = {0, 0};
  ClientToScreen(viewer->window, &origin);
  const int32_t place[4] = {origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
  JDEC_Access_SrcRect(viewer->decoder, place);
}

/** At the end of the source the last picture stays, unless there is none or the viewer was to stop after some frames. */
static void On_End(Viewer* viewer) {
  std::string error;
  const FeedState state = Feed_State(viewer->feed.get(), &error);
  if (state == FeedState::Running || viewer->ended) return;
  viewer->ended = true;
  if (state == FeedState::Failed) viewer->code = Report(error);
  if (viewer->shown == 0 && state == FeedState::Ended) viewer->code = Report("no frame of the source can be decoded");
  if (viewer->shown == 0 || viewer->options.frames > 0) {
    DestroyWindow(viewer->window);
  } else {
    Update_Title(*viewer);
  }
}

/* ---- Messages ------------------------------------------------------------------------------------------------------------- */

static void On_Frame(Viewer* viewer, WPARAM, LPARAM) {
  const bool reconnecting = Feed_Reconnecting(viewer->feed.get());
  if (reconnecting != viewer->reconnecting) {
    viewer->reconnecting = reconnecting;
    Update_Title(*viewer);
  }
  if (viewer->paused) return;
  FedFrame fed;
  if (Feed_Take(viewer->feed.get(), &fed)) {
    Show_Frame(viewer, fed);
  } else {
    On_End(viewer);
  }
}

static void On_Paint(Viewer* viewer, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  BeginPaint(viewer->window, &paint);
  EndPaint(viewer->window, &paint);
  Repaint(viewer);
}

static void On_Size(Viewer* viewer, WPARAM, LPARAM) { Repaint(viewer); }

static void On_Char(Viewer* viewer, WPARAM character, LPARAM) {
  for (const KeyAction& action : keyActions) {
    if (character < 128 && action.key == std::tolower(static_cast<int>(character))) action.act(viewer);
  }
}

/** The arrow keys move the rectangle. */
static void On_Key_Down(Viewer* viewer, WPARAM key, LPARAM) {
  constexpr int Step = 8;
  if (viewer->shown == 0) return;
  const int x = key == VK_LEFT ? -Step : key == VK_RIGHT ? Step : 0, y = key == VK_UP ? -Step : key == VK_DOWN ? Step : 0;
  if (x == 0 && y == 0) return;
  Overlays_Move_Rectangle(&viewer->overlays, viewer->decoder, x, y);
  Repaint(viewer);
}

/** A click marks or clears the cell under it; the picture fills the client area. */
static void On_Click(Viewer* viewer, WPARAM, LPARAM place) {
  RECT client = {};
  GetClientRect(viewer->window, &client);
  if (viewer->shown == 0 || client.right <= 0 || client.bottom <= 0) return;
  const int x = static_cast<int16_t>(LOWORD(place)) * viewer->width / client.right;
  const int y = static_cast<int16_t>(HIWORD(place)) * viewer->height / client.bottom;
  if (Overlays_Click(&viewer->overlays, viewer->decoder, x, y)) Repaint(viewer);
}

static void On_Destroy(Viewer* viewer, WPARAM, LPARAM) {
  Feed_Stop(viewer->feed.get());
  JDEC_Draw_Exit(viewer->decoder);
  PostQuitMessage(0);
}

struct ViewerAction {
  UINT message;
  void (*act)(Viewer* viewer, WPARAM wParam, LPARAM lParam);
};
static constexpr ViewerAction viewerActions[] = {
    {FrameMessage, On_Frame},  {WM_PAINT, On_Paint},       {WM_SIZE, On_Size},       {WM_CHAR, On_Char},
    {WM_KEYDOWN, On_Key_Down}, {WM_LBUTTONDOWN, On_Click}, {WM_DESTROY, On_Destroy},
};

static LRESULT CALLBACK Viewer_Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* const viewer = reinterpret_cast<Viewer*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  for (const ViewerAction& action : viewerActions) {
    if (!viewer || action.message != message) continue;
    action.act(viewer, wParam, lParam);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

static bool Open_Window(Viewer* viewer) {
  WNDCLASSA windowClass = {};
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = Viewer_Procedure;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  windowClass.lpszClassName = ClassName;
  RegisterClassA(&windowClass);
  RECT frame = {0, 0, WaitingWidth, WaitingHeight};
  AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
  viewer->window = CreateWindowExA(0, ClassName, "velarto", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                   frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr, nullptr, nullptr);
  if (!viewer->window) return false;
  SetWindowLongPtrA(viewer->window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(viewer));
  return true;
}

/** Takes the next message, those of frames last: a source faster than the screen must not delay the user's input. */
static bool Take_Message(MSG* message) {
  return PeekMessageA(message, nullptr, 0, FrameMessage - 1, PM_REMOVE) || PeekMessageA(message, nullptr, 0, 0, PM_REMOVE);
}

static void Run_Messages() {
  MSG message = {};
  while (message.message != WM_QUIT) {
    if (!Take_Message(&message)) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT);
      continue;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

int Viewer_Run(const ViewerOptions& options) {
  Viewer viewer = {.options = options, .feed = Feed_Start(options.feed), .overlays = options.overlays};
  Feed_Await(viewer.feed.get(), FirstPictureWait);
  std::string error;
  if (Feed_State(viewer.feed.get(), &error) == FeedState::Failed) return Report(error);
  if (!Open_Window(&viewer)) {
    Feed_Stop(viewer.feed.get());
    return Report("can't open a window");
  }
  Update_Title(viewer);
  // If there is a picture already, the window opens in its size.
  FedFrame first;
  if (Feed_Take(viewer.feed.get(), &first)) Show_Frame(&viewer, first);
  if (IsWindow(viewer.window)) {
    ShowWindow(viewer.window, SW_SHOW);
    Feed_Notify(viewer.feed.get(), viewer.window, FrameMessage);
  }
  Run_Messages();
  JDEC_Free(viewer.decoder);
  return viewer.code;
}
