#include "platform/sdl/file_question.h"

#include "platform/sdl/shown_windows.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <signal.h>
#include <spawn.h>

/** Milliseconds between two checks of the program. */
static constexpr DWORD CheckPeriod = 30;

/** The program that asks; its answer comes through the pipe. */
struct Asker {
  pid_t process = -1;
  int pipe = -1;
  std::string answer;
};

/* ---- The program ---------------------------------------------------------------------------------------------------------- */

/** False if there is no such program. */
static bool Start(const std::vector<std::string>& words, Asker* asker) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const int failure = posix_spawnp(&asker->process, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failure == 0) {
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    asker->pipe = ends[0];
    return true;
  }
  close(ends[0]);
  return false;
}

static bool Start_Any(const OPENFILENAMEA& dialog, const std::string& proposed, Asker* asker) {
  const std::string title = dialog.lpstrTitle ? dialog.lpstrTitle : "";
  // Without --confirm-overwrite: the dialog to open a file, which this is, doesn't ask before one is replaced, whatever its
  // flags.
  return Start({"zenity", "--file-selection", "--save", "--filename=" + proposed, "--title=" + title}, asker) ||
         Start({"kdialog", "--title", title, "--getsavefilename", proposed}, asker);
}

static void Read_Answer(Asker* asker) {
  char bytes[4096];
  for (ssize_t count; (count = read(asker->pipe, bytes, sizeof bytes)) > 0;)
    asker->answer.append(bytes, static_cast<size_t>(count));
}

/** Whether the program has ended; *accepted is then whether it gave an answer. */
static bool Has_Ended(Asker* asker, bool* accepted) {
  int status = 0;
  const bool ended = waitpid(asker->process, &status, WNOHANG) == asker->process;
  // The program waits while the pipe is full.
  Read_Answer(asker);
  if (!ended) return false;
  asker->process = -1;
  *accepted = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return true;
}

static void Stop(Asker* asker) {
  if (asker->process > 0) {
    kill(asker->process, SIGTERM);
    waitpid(asker->process, nullptr, 0);
  }
  close(asker->pipe);
}

/* ---- The question --------------------------------------------------------------------------------------------------------- */

/** Handles the messages that there are. False on WM_QUIT, which is posted again. */
static bool Run_Messages() {
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return true;
}

/** Waits for the answer; nothing when the user declines. */
static std::optional<std::string> Await(HWND owner, Asker* asker) {
  bool accepted = false;
  while (!Has_Ended(asker, &accepted)) {
    if (!Run_Messages() || (owner && !IsWindow(owner))) return {};
    MsgWaitForMultipleObjects(0, nullptr, FALSE, CheckPeriod, QS_ALLINPUT);
  }
  if (!accepted) return {};
  if (asker->answer.ends_with('\n')) asker->answer.pop_back();
  if (asker->answer.empty()) return {};
  return asker->answer;
}

std::optional<std::string> Ask_For_File(const OPENFILENAMEA& dialog) {
  std::error_code failure;
  const std::string proposed = std::filesystem::absolute(dialog.lpstrFile, failure).string();
  Asker asker;
  if (!Start_Any(dialog, proposed, &asker)) {
    std::fprintf(stderr, "velarto: neither zenity nor kdialog is installed to ask for a file; it is %s\n", proposed.c_str());
    return dialog.lpstrFile;
  }
  const HWND owner = dialog.hwndOwner, top = Top_Of(owner);
  const bool disables = IsWindowEnabled(top);
  if (disables) EnableWindow(top, FALSE);
  std::optional<std::string> answer = Await(owner, &asker);
  Stop(&asker);
  if (disables) EnableWindow(top, TRUE);
  return answer;
}
