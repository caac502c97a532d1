#include "host/pictures/Chart.h"
#include <OpenImageIO/color.h>
#include <cairo.h>
#include <cmath>
#include <fmt/format.h>
#include <fontconfig/fontconfig.h>

namespace fernwick {

namespace {

constexpr double kTextSize = 13; // pixels, as all lengths here
constexpr double kHeadingSize = 17;
constexpr double kTickLength = 5;
constexpr double kTitleGap = 8;
constexpr TMCColorRGB kInk = {0.13f, 0.13f, 0.13f};
constexpr TMCColorRGB kGrid = {0.86f, 0.86f, 0.86f};
constexpr double kDashes[] = {7, 4};

double XOf(const ChartArea& area, const ChartAxis& across, double value)
{
    return area.fLeft + (value - across.fFrom) / (across.fTo - across.fFrom) * area.fWidth;
}

double YOf(const ChartArea& area, const ChartAxis& up, double value)
{
    return area.fTop + area.fHeight - (value - up.fFrom) / (up.fTo - up.fFrom) * area.fHeight;
}

template <class Draw> void ForEachTick(const ChartAxis& axis, Draw draw)
{
    const int count = static_cast<int>(std::floor((axis.fTo - axis.fFrom) / axis.fStep + 1e-6));
    for (int i = 0; i <= count; ++i)
        draw(axis.fFrom + i * axis.fStep);
    if (axis.fTo - (axis.fFrom + count * axis.fStep) >= axis.fStep / 2)
        draw(axis.fTo);
}

/// The middle of the pixel, where a line one pixel wide is sharp.
double Sharp(double place) { return std::floor(place) + 0.5; }

/// Gives back at the end of the program what was kept of fonts; a leak checker tells of it else.
struct FontKeeper {
    ~FontKeeper()
    {
        cairo_debug_reset_static_data();
        FcFini();
    }
};

} // namespace

struct Chart::Canvas {
    cairo_surface_t* fSurface;
    cairo_t* fContext;

    Canvas(int width, int height)
        : fSurface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
          fContext(cairo_create(fSurface))
    { }
    ~Canvas()
    {
        cairo_destroy(fContext);
        cairo_surface_destroy(fSurface);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
};

Chart::Chart(int width, int height)
    : fWidth(width), fHeight(height), fCanvas(std::make_unique<Canvas>(width, height))
{
    static const FontKeeper keeper;
    cairo_t* const context = fCanvas->fContext;
    if (cairo_status(context) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_paint(context);
    cairo_select_font_face(context, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, kTextSize);
}

Chart::~Chart() = default;

void Chart::Heading(double left, double top, const std::string& text)
{
    UseInk(kInk, 1);
    cairo_set_font_size(fCanvas->fContext, kHeadingSize);
    Text(left, top + kHeadingSize, Anchor::kLeft, text);
    cairo_set_font_size(fCanvas->fContext, kTextSize);
}

void Chart::Frame(const ChartFrame& frame, const std::string& title, const std::string& details)
{
    const ChartArea& area = frame.fArea;
    UseInk(kGrid, 1);
    ForEachTick(frame.fAcross, [&](double tick) {
        const double x = XOf(area, frame.fAcross, tick);
        Line(x, area.fTop, x, area.fTop + area.fHeight);
    });
    ForEachTick(frame.fUp, [&](double tick) {
        const double y = YOf(area, frame.fUp, tick);
        Line(area.fLeft, y, area.fLeft + area.fWidth, y);
    });
    AxisBelow(area, frame.fAcross);
    AxisBeside(area, frame.fUp);
    Text(area.fLeft, area.fTop - kTitleGap - kTextSize - 4, Anchor::kLeft, title);
    Text(area.fLeft, area.fTop - kTitleGap, Anchor::kLeft, details);
}

void Chart::Curve(const ChartFrame& frame, const ChartPen& pen, std::span<const ChartPoint> points)
{
    cairo_t* const context = fCanvas->fContext;
    const ChartArea& area = frame.fArea;
    cairo_save(context);
    cairo_rectangle(context, area.fLeft, area.fTop - 1, area.fWidth + 1, area.fHeight + 2);
    cairo_clip(context);
    for (const ChartPoint& point : points)
        cairo_line_to(context, XOf(area, frame.fAcross, point.fAcross), YOf(area, frame.fUp, point.fUp));
    UseInk(pen.fColor, 2);
    cairo_set_dash(context, kDashes, pen.fDashed ? std::size(kDashes) : 0, 0);
    cairo_stroke(context);
    cairo_restore(context);
}

void Chart::Legend(double left, double top, const ChartPen& pen, const std::string& text)
{
    constexpr double kSample = 34;
    const ChartAxis unit = {"", 0, 1, 1};
    const ChartPoint sample[] = {{0, 0.5}, {1, 0.5}};
    Curve({{left, top, kSample, kTextSize}, unit, unit}, pen, sample);
    UseInk(kInk, 1);
    Text(left + kSample + 8, top + kTextSize - 2, Anchor::kLeft, text);
}

void Chart::Strip(const ChartArea& area, const ChartAxis& across, const std::string& title,
    std::span<const ChartSwatch> swatches)
{
    cairo_t* const context = fCanvas->fContext;
    cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE); // neighbours would show the paper between them
    for (const ChartSwatch& swatch : swatches) {
        const double left = XOf(area, across, swatch.fFrom);
        const double right = XOf(area, across, swatch.fTo);
        UseInk(swatch.fColor, 1);
        cairo_rectangle(context, left, area.fTop, right - left, area.fHeight);
        cairo_fill(context);
    }
    cairo_set_antialias(context, CAIRO_ANTIALIAS_DEFAULT);
    UseInk(kInk, 1);
    Text(area.fLeft, area.fTop - kTitleGap, Anchor::kLeft, title);
}

void Chart::AxisBelow(const ChartArea& area, const ChartAxis& across)
{
    const double bottom = area.fTop + area.fHeight;
    UseInk(kInk, 1);
    Line(area.fLeft, bottom, area.fLeft + area.fWidth, bottom);
    ForEachTick(across, [&](double tick) {
        const double x = XOf(area, across, tick);
        Line(x, bottom, x, bottom + kTickLength);
        Text(x, bottom + kTickLength + kTextSize + 1, Anchor::kMiddle, fmt::format("{}", tick));
    });
    Text(area.fLeft + area.fWidth / 2, bottom + kTickLength + 2 * kTextSize + 8, Anchor::kMiddle,
        across.fTitle);
}

void Chart::AxisBeside(const ChartArea& area, const ChartAxis& up)
{
    UseInk(kInk, 1);
    Line(area.fLeft, area.fTop, area.fLeft, area.fTop + area.fHeight);
    ForEachTick(up, [&](double tick) {
        const double y = YOf(area, up, tick);
        Line(area.fLeft - kTickLength, y, area.fLeft, y);
        Text(area.fLeft - kTickLength - 4, y + 4, Anchor::kRight, fmt::format("{}", tick));
    });
    cairo_t* const context = fCanvas->fContext;
    cairo_save(context);
    cairo_translate(context, area.fLeft - 44, area.fTop + area.fHeight / 2);
    cairo_rotate(context, -std::acos(0.0));
    Text(0, 0, Anchor::kMiddle, up.fTitle);
    cairo_restore(context);
}

Picture Chart::Finish() const
{
    cairo_surface_flush(fCanvas->fSurface);
    Picture picture(fWidth, fHeight, PictureContent::kColor);
    const unsigned char* const bytes = cairo_image_surface_get_data(fCanvas->fSurface);
    const int stride = cairo_image_surface_get_stride(fCanvas->fSurface);
    const auto linear
        = [](uint32_t byte) { return OIIO::sRGB_to_linear(static_cast<float>(byte & 255) / 255); };
    for (int y = 0; y < fHeight; ++y) {
        const auto* const row = reinterpret_cast<const uint32_t*>(bytes + ptrdiff_t{y} * stride);
        for (int x = 0; x < fWidth; ++x)
            picture.At(x, y) = {linear(row[x] >> 16), linear(row[x] >> 8), linear(row[x]), 1};
    }
    return picture;
}

void Chart::Text(double x, double baseline, Anchor anchor, const std::string& text)
{
    cairo_text_extents_t extents;
    cairo_text_extents(fCanvas->fContext, text.c_str(), &extents);
    const double share = anchor == Anchor::kLeft ? 0 : anchor == Anchor::kMiddle ? 0.5 : 1;
    cairo_move_to(fCanvas->fContext, x - share * extents.x_advance, baseline);
    cairo_show_text(fCanvas->fContext, text.c_str());
    cairo_new_path(fCanvas->fContext);
}

void Chart::Line(double fromX, double fromY, double toX, double toY)
{
    cairo_move_to(fCanvas->fContext, Sharp(fromX), Sharp(fromY));
    cairo_line_to(fCanvas->fContext, Sharp(toX), Sharp(toY));
    cairo_stroke(fCanvas->fContext);
}

void Chart::UseInk(const TMCColorRGB& color, double lineWidth)
{
    cairo_set_source_rgb(fCanvas->fContext, color.fRed, color.fGreen, color.fBlue);
    cairo_set_line_width(fCanvas->fContext, lineWidth);
}

} // namespace fernwick
