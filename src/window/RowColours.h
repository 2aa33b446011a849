// The two row colours of the main list (`lineColors`, opened by `OptsPick`):
// six settings, l1r..l2b, written as soon as a colour is picked or restored.
// The window only shows the swatches; everything else is here.
#pragma once

#include "window/Editor.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace korvel {

// A colour as 0x00BBGGRR. A plain red/green/blue colour passes through;
// anything the platform could not translate (a component outside 0..255)
// gives every bit set, which is then saved as 255, 255, 255.
std::uint32_t ToColourRef(const Rgb& colour);

inline constexpr Rgb RestoredColourOne{239, 239, 239};
inline constexpr Rgb RestoredColourTwo{255, 255, 255};

// Whether the person picked the row colours (or put them back with
// `restore`): until then the stripes follow the desktop's own colours, so a
// dark theme gets dark stripes. Remembered as `ownColors` in korvel.ini.
bool RowColoursChosen(const Settings& settings);

// Black or white, whichever is easier to read on both `first` and `second`
// (the larger of the two worse contrast ratios): text on the stripes must
// never be white on white or black on black.
Rgb ReadableTextOn(const Rgb& first, const Rgb& second);

class RowColours {
public:
    // `paintRowStripes` repaints the main list after each save.
    RowColours(Editor& editor, std::function<void()> paintRowStripes);

    // The stored colour 1 or 2, as the swatch shows it when the dialog opens.
    // A missing or unreadable value falls back to the first-run colour.
    Rgb Stored(int which) const;
    // colorOne / colorTwo: the colour picker; nothing changes on a cancel.
    // Returns the colour that was saved.
    std::optional<Rgb> Pick(int which);
    // SaveColourOne / SaveColourTwo.
    void Save(int which, const Rgb& swatch);
    // restore: both colours back, then the message text(`lc5`). The dialog
    // closes itself afterwards.
    void Restore();

private:
    Editor& editor_;
    std::function<void()> paintRowStripes_;
};

} // namespace korvel
