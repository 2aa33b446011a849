// The preview pane's window logic without Qt: which row it shows, which mip
// level makes a thumbnail, and its exports (textures as PNG, the model as
// glTF or OBJ), which ask through the Desktop and report there.
#pragma once

#include "archive/EntryTable.h"
#include "preview/Textures.h"
#include "window/Editor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace korvel {

// The row the pane shows: the one selected row; with several selected, the
// list's current row when it is one of them; nothing when none is selected.
std::optional<std::size_t> PreviewedRow(const EntryTable& table,
                                        std::optional<std::size_t> currentRow);

// The smallest mip level of `texture` whose longer side still covers `side`
// pixels (level 0 when even that one is smaller): the least decoding that
// gives a sharp thumbnail.
std::size_t ThumbnailLevel(const TextureInfo& texture, std::uint32_t side);

class PreviewExports {
public:
    explicit PreviewExports(Editor& editor) : editor_(editor) {}

    // Asks where, then writes the texture `texture` of the dictionary `entry`
    // as "<texture>.png" in the chosen folder.
    void ExportTextureAsking(const Entry& entry, const std::string& texture);
    // Asks for a folder, then writes every texture of `entry` into it.
    void ExportAllTexturesAsking(const Entry& entry);
    // Asks for a file name (.glb or .obj by the filter chosen), then writes
    // the model `entry` with the textures the archive holds for it.
    void ExportModelAsking(const Entry& entry);

private:
    void ExportTexturesInto(const Entry& entry, const std::optional<std::string>& only);
    void Report(const std::string& done, const std::vector<std::string>& problems);

    Editor& editor_;
};

} // namespace korvel
