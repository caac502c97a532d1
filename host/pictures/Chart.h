#pragma once
#include "host/pictures/Picture.h"
#include <memory>
#include <span>
#include <string>

namespace fernwick {

/// A rectangle in pixels from the left and the top.
struct ChartArea {
    double fLeft;
    double fTop;
    double fWidth;
    double fHeight;
};

/// What runs along one side of an area.
struct ChartAxis {
    std::string fTitle;
    double fFrom; ///< at the left, or at the bottom
    double fTo;
    double fStep; ///< between numbered ticks, from `fFrom` on; the end gets one where there is room
};

/// An area with an axis below and one beside it.
struct ChartFrame {
    ChartArea fArea;
    ChartAxis fAcross;
    ChartAxis fUp;
};

struct ChartPoint {
    double fAcross;
    double fUp;
};

struct ChartPen {
    TMCColorRGB fColor; ///< encoded for display
    bool fDashed = false;
};

/// A stretch of a strip in one colour.
struct ChartSwatch {
    double fFrom;
    double fTo;
    TMCColorRGB fColor; ///< encoded for display
};

/// A drawing with labelled axes on white paper.
class Chart {
public:
    /// @param width, height  in pixels, above 0
    Chart(int width, int height);
    ~Chart();
    Chart(const Chart&) = delete;
    Chart& operator=(const Chart&) = delete;

    void Heading(double left, double top, const std::string& text);

    /// The ticks, numbers and titles of both axes, a grid, and above a title with a line of details below it.
    void Frame(const ChartFrame& frame, const std::string& title, const std::string& details);
    /// A line through `points`, cut off at the edges of the frame's area.
    void Curve(const ChartFrame& frame, const ChartPen& pen, std::span<const ChartPoint> points);
    /// A short line of a pen with what it stands for.
    void Legend(double left, double top, const ChartPen& pen, const std::string& text);

    /// Swatches side by side, with a title above.
    void Strip(const ChartArea& area, const ChartAxis& across, const std::string& title,
        std::span<const ChartSwatch> swatches);
    /// The ticks, numbers and title of an axis below an area.
    void AxisBelow(const ChartArea& area, const ChartAxis& across);

    /// What has been drawn, as linear light.
    Picture Finish() const;

private:
    struct Canvas;

    int fWidth;
    int fHeight;
    std::unique_ptr<Canvas> fCanvas;

    enum class Anchor { kLeft, kMiddle, kRight };

    void Text(double x, double baseline, Anchor anchor, const std::string& text);
    void AxisBeside(const ChartArea& area, const ChartAxis& up);
    void Line(double fromX, double fromY, double toX, double toY);
    void UseInk(const TMCColorRGB& color, double lineWidth);
};

} // namespace fernwick
