#include "apps/velarto/commands.h"
#include "apps/velarto/program.h"

void Add_Commands(CLI::App* app, int* code) {
  Add_File_Commands(app, code);
  View_Command(app, code);
  Camera_Command(app, code);
}

bool Keep_Or_Pass_On(int, char**, std::string*) { return true; }
