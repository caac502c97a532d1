#pragma once
#include "tools/Outcome.h"
#include <CLI/CLI.hpp>

void AddListCommand(CLI::App& app);
void AddDescribeCommand(CLI::App& app);
void AddBakeCommand(CLI::App& app);
void AddShadeCommand(CLI::App& app);
void AddReferenceCommand(CLI::App& app);
void AddSceneCommand(CLI::App& app);
void AddPlotCommand(CLI::App& app);
void AddRenderCommand(CLI::App& app);
void AddValidateCommand(CLI::App& app);
void AddSchemaCommand(CLI::App& app);
void AddCompletionCommand(CLI::App& app);
void AddManCommand(CLI::App& app);
