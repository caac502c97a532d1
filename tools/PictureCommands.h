#pragma once
#include "tools/GraphOptions.h"
#include "tools/OntoOptions.h"
#include "tools/ShadeOptions.h"

// The commands that work with pictures, scenes or rays. What the command line asks of them is read by the command; the
// work, and the libraries behind it, are in a program of their own, which the command becomes when one is to run.

struct BakeCommandOptions {
    GraphOptions graph;
    std::string library;
    BakeOptions bake;
    OntoOptions onto;
};

struct RenderOptions {
    GraphOptions graph;
    bool isStrip = false;
    PictureOptions picture;
    std::string camera;
    int samples = 9;
    std::string library;
};

struct PlotOptions {
    std::string plot;
    std::string picture;
    std::string library;
};

struct SceneOptions {
    std::string file;
    bool asJson = false;
};

struct ReferenceOptions {
    std::string folder;
    std::string root;
    std::string library;
};

// Each does all that its command is for, but for reading the command line. They throw `UsageError`, `Interrupted` and
// what the host throws.

void RunBake(const BakeCommandOptions& options);
void RunShade(const ShadeOptions& options);
void RunRender(const RenderOptions& options);
void RunPlot(const PlotOptions& options);
void RunScene(const SceneOptions& options);
void RunReference(const ReferenceOptions& options);
