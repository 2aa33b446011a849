#include "window/PreviewCommands.h"

#include "archive/EntryFiles.h"
#include "platform/Cp1252.h"
#include "preview/EntryPreview.h"
#include "settings/FailureTexts.h"

#include <filesystem>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

std::optional<std::size_t> PreviewedRow(const EntryTable& table,
                                        std::optional<std::size_t> currentRow) {
    std::optional<std::size_t> only;
    std::size_t selected = 0;
    for (std::size_t row = 0; row < table.size() && selected < 2; ++row) {
        if (table[row].selected) {
            only = row;
            ++selected;
        }
    }
    if (selected < 2) {
        return only;
    }
    // Several chosen: the one the keyboard is on, when it is one of them.
    if (currentRow && *currentRow < table.size() && table[*currentRow].selected) {
        return currentRow;
    }
    return std::nullopt;
}

std::size_t ThumbnailLevel(const TextureInfo& texture, std::uint32_t side) {
    std::size_t chosen = 0;
    for (std::size_t level = 1; level < texture.levels.size(); ++level) {
        const TextureLevel& l = texture.levels[level];
        if (std::max(l.width, l.height) < side) {
            break;
        }
        chosen = level;
    }
    return chosen;
}

void PreviewExports::ExportTextureAsking(const Entry& entry, const std::string& texture) {
    ExportTexturesInto(entry, texture);
}

void PreviewExports::ExportAllTexturesAsking(const Entry& entry) {
    ExportTexturesInto(entry, std::nullopt);
}

void PreviewExports::ExportTexturesInto(const Entry& entry,
                                        const std::optional<std::string>& only) {
    const std::string title = editor_.text(only ? "prvExportOne" : "prvExportAll");
    const auto folder = editor_.desktop().ChooseFolderDialog(title);
    if (!folder) {
        return;
    }
    // The export writes over files of the same name: the person says so
    // first, naming them, or nothing is written.
    std::string existing;
    const EntryPreview preview = ReadEntryPreview(editor_.dataPath(), entry);
    for (const TextureInfo& t : preview.textures.textures) {
        if (only && !EqualsIgnoreCase(t.name, *only)) {
            continue;
        }
        const auto target = EntryFileIn(*folder, t.name + ".png");
        std::error_code ec;
        if (target && fs::exists(*target, ec)) {
            existing += "\r\n" + target->string();
        }
    }
    if (!existing.empty() &&
        !editor_.desktop().AskYesNo(editor_.text("prvOverwrite") + existing, title)) {
        return;
    }
    const TextureExport result = ExportTextures(editor_.archive(), entry, *folder, only);
    Report(editor_.settings().LookupCountText("prvWritten", result.written) + " " + *folder,
           result.problems);
}

void PreviewExports::ExportModelAsking(const Entry& entry) {
    std::string preset = entry.name;
    const auto dot = preset.find_last_of('.');
    preset = preset.substr(0, dot) + ".glb";
    const FileDialogAnswer answer = editor_.desktop().SaveFileDialog(
        {editor_.text("prvExportModel"), editor_.text("prvModelFiles"), "", preset, false});
    if (!answer.chosen()) {
        return;
    }
    fs::path out = answer.paths.front();
    std::string extension = out.extension().string();
    for (char& c : extension) {
        c = LowerCp1252(c);
    }
    // A name typed without a known ending gets the binary glTF one.
    if (extension != ".glb" && extension != ".obj") {
        out += ".glb";
    }
    const ModelExportFiles prepared = PrepareModelExport(editor_.archive(), entry, out);
    if (!prepared.status.ok()) {
        Report({}, {StatusText(editor_.settings(), prepared.status)});
        return;
    }
    // An OBJ brings its MTL and PNGs beside it: one question names every file
    // the export would write over, or nothing is written.
    std::string existing;
    for (const fs::path& path : prepared.paths()) {
        std::error_code ec;
        if (fs::exists(path, ec)) {
            existing += "\r\n" + path.string();
        }
    }
    if (!existing.empty() && !editor_.desktop().AskYesNo(editor_.text("prvOverwrite") + existing,
                                                         editor_.text("prvExportModel"))) {
        return;
    }
    if (const Status s = WriteModelExport(editor_.archive(), prepared); !s.ok()) {
        Report({}, {StatusText(editor_.settings(), s)});
        return;
    }
    std::vector<std::string> problems;
    for (const std::string& name : prepared.missing) {
        problems.push_back(editor_.text("prvMissing") + " " + ShownName(name));
    }
    Report(editor_.text("prvModelWritten") + " " + out.string(), problems);
}

void PreviewExports::Report(const std::string& done, const std::vector<std::string>& problems) {
    Desktop& desktop = editor_.desktop();
    if (!done.empty()) {
        desktop.SetStatus(done);
    }
    if (problems.empty()) {
        return;
    }
    std::string text = done.empty() ? editor_.text("prvExportFailed") : done;
    for (const std::string& p : problems) {
        text += "\r\n" + p;
    }
    desktop.ShowMessage(text, done.empty() ? editor_.text("errorTitle") : std::string(),
                        done.empty() ? MessageIcon::Critical : MessageIcon::Exclamation);
}

} // namespace korvel
