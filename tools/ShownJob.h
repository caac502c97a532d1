#pragma once
#include "host/json/GraphError.h"
#include "host/json/Printable.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"
#include "tools/Commands.h"
#include "tools/ProgressBar.h"
#include "tools/ReportSummary.h"

/// Runs a job with a progress bar. Throws `Interrupted`, and what the job throws with `name` before it.
/// @param job   told to show how far it is; one that `make` runs
/// @param make  gives the picture, or nothing when the job was cancelled
template <class Job, class Make>
fernwick::Picture RunShown(Job& job, ReportSummary& reports, const std::string& name, const Make& make)
{
    ProgressBar bar(fernwick::Printable(name));
    job.onProgress = [&](double share) {
        reports.Forget();
        bar.Show(share);
    };
    const auto named = [&name](const std::exception& error) { return name + ": " + error.what(); };
    try {
        std::optional<fernwick::Picture> picture = make();
        if (!picture || *job.cancel)
            throw Interrupted();
        return *std::move(picture);
    } catch (const fernwick::GraphError& error) {
        throw fernwick::GraphError(named(error));
    } catch (const fernwick::BakeError& error) {
        throw fernwick::BakeError(named(error));
    } catch (const fernwick::RenderError& error) {
        throw fernwick::RenderError(named(error));
    }
}
