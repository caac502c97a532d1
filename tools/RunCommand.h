#pragma once

/// All of the command, from its command line to what is answered to the shell.
int RunCommand(int argc, char** argv);
