#include "tools/CommandFile.h"
#include "tools/RunCommand.h"
#include "tools/pictures/ModelProgress.h"

// What the command becomes to work with pictures, scenes and rays. It reads the command line once more.

int main(int argc, char** argv)
{
    WorkFor(argv[0]);
    ShowModelsLoading();
    return RunCommand(argc, argv);
}
