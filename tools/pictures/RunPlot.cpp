#include "host/library/Library.h"
#include "host/shading/Plots.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include "tools/Outcome.h"
#include "tools/PictureCommands.h"
#include "tools/ReportSummary.h"

void RunPlot(const PlotOptions& options)
{
    fernwick::RequireWritable(options.picture);
    const std::atomic<bool>& cancel = WatchForInterrupt();
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    const fernwick::Picture picture = Draw(*fernwick::FindPlot(options.plot), library);
    if (cancel)
        throw Interrupted();
    picture.Save(options.picture);
}
