#pragma once

/// From now on shows how far the reading of each model is, by a `ProgressBar`.
void ShowModelsLoading();
