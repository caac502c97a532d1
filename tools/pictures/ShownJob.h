#pragma once
#include "host/json/GraphError.h"
#include "host/json/Printable.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"
#include "tools/Outcome.h"
#include "tools/pictures/ProgressBar.h"

/// Does some work; what it throws of a graph gets `name` before it.
template <class Work> auto WithName(const std::string& name, const Work& work)
{
    const auto named = [&name](const std::exception& error) { return name + ": " + error.what(); };
    try {
        return work();
    } catch (const fernwick::GraphError& error) {
        throw fernwick::GraphError(named(error));
    } catch (const fernwick::BakeError& error) {
        throw fernwick::BakeError(named(error));
    } catch (const fernwick::RenderError& error) {
        throw fernwick::RenderError(named(error));
    }
}

/// Runs a job with a progress bar. Throws `Interrupted`, and what the job throws with `name` before it.
/// @param job   told to show how far it is; one that `make` runs
/// @param make  gives what the job makes, or true; nothing, or false, when it was cancelled
template <class Job, class Make> auto RunShown(Job& job, const std::string& name, const Make& make)
{
    ProgressBar bar(fernwick::Printable(name));
    job.onProgress = [&](double share) { bar.Show(share); };
    auto made = WithName(name, make);
    if (!made || *job.cancel)
        throw Interrupted();
    if constexpr (!std::is_same_v<decltype(made), bool>)
        return *std::move(made);
}
