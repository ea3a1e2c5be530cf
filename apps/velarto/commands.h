/* The sub-commands. Each adds itself, its options and its example to the command line, and runs from there. */
#pragma once

#include <CLI/CLI.hpp>

/** *code receives the command's exit code. */
void Info_Command(CLI::App* app, int* code);
void Export_Command(CLI::App* app, int* code);
void Make_Command(CLI::App* app, int* code);
void Record_Command(CLI::App* app, int* code);
void View_Command(CLI::App* app, int* code);
void Bench_Command(CLI::App* app, int* code);
/** Adds nothing on a platform without the camera. */
void Camera_Command(CLI::App* app, int* code);

/** The argument and the option that all of them have. */
void Add_Common_Options(CLI::App* command, std::string* source, std::string* kernelName);
