#include "window/RowColours.h"

#include "window/MainCommands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace korvel {
namespace {

using ColourKeys = std::array<std::string_view, 3>;

ColourKeys KeysOf(int which) {
    return which == 1 ? ColourKeys{"l1r", "l1g", "l1b"} : ColourKeys{"l2r", "l2g", "l2b"};
}

} // namespace

std::uint32_t ToColourRef(const Rgb& colour) {
    const auto valid = [](int c) { return c >= 0 && c <= 255; };
    if (!valid(colour.red) || !valid(colour.green) || !valid(colour.blue)) {
        return 0xFFFFFFFFu;
    }
    return static_cast<std::uint32_t>(colour.red) | static_cast<std::uint32_t>(colour.green) << 8 |
           static_cast<std::uint32_t>(colour.blue) << 16;
}

bool RowColoursChosen(const Settings& settings) {
    return settings.ReadSetting("ownColors") == "True";
}

namespace {

// Relative luminance as the web's contrast rules define it.
double Luminance(const Rgb& colour) {
    const auto linear = [](int component) {
        const double c = std::clamp(component, 0, 255) / 255.0;
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) +
           0.0722 * linear(colour.blue);
}

double Contrast(double a, double b) {
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

Rgb ReadableTextOn(const Rgb& first, const Rgb& second) {
    const double a = Luminance(first);
    const double b = Luminance(second);
    const double onBlack = std::min(Contrast(a, 0.0), Contrast(b, 0.0));
    const double onWhite = std::min(Contrast(a, 1.0), Contrast(b, 1.0));
    return onBlack >= onWhite ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
}

RowColours::RowColours(Editor& editor, std::function<void()> paintRowStripes)
    : editor_(editor), paintRowStripes_(std::move(paintRowStripes)) {}

Rgb RowColours::Stored(int which) const {
    // The first-run values of the settings file.
    const int fallback = which == 1 ? 233 : 255;
    std::array<int, 3> parts{};
    const ColourKeys keys = KeysOf(which);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        parts[i] = ColourComponent(editor_.settings().ReadSetting(keys[i])).value_or(fallback);
    }
    return {parts[0], parts[1], parts[2]};
}

std::optional<Rgb> RowColours::Pick(int which) {
    const std::optional<Rgb> chosen = editor_.desktop().PickColour();
    if (chosen) {
        Save(which, *chosen);
    }
    return chosen;
}

void RowColours::Save(int which, const Rgb& swatch) {
    const std::uint32_t c = ToColourRef(swatch);
    const ColourKeys keys = KeysOf(which);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        editor_.settings().WriteSetting(std::to_string((c >> (8 * i)) & 0xFFu), keys[i]);
    }
    editor_.settings().WriteSetting("True", "ownColors");
    if (paintRowStripes_) {
        paintRowStripes_();
    }
}

void RowColours::Restore() {
    Save(1, RestoredColourOne);
    Save(2, RestoredColourTwo);
    editor_.desktop().ShowMessage(editor_.text("lc5"), "", MessageIcon::None);
}

} // namespace korvel
