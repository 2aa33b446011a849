#include "window/EntryExport.h"

#include "archive/EntryFiles.h"
#include "platform/Folders.h"
#include "preview/EntryPreview.h"
#include "settings/FailureTexts.h"
#include "window/EntryCommands.h"

#include <string>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

EntryExport::EntryExport(Editor& editor) : editor_(editor) {}

EntryExport::~EntryExport() {
    RemoveExported();
}

void EntryExport::RemoveExported() {
    if (!folder_.empty()) {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
        folder_.clear();
    }
}

bool EntryExport::MakeFreshFolder() {
    RemoveExported();
    EntryCommands::EnsureTempsFolder();
    // A folder of our own that did not exist before: nothing of an earlier
    // run, or of another Korvel sharing the temps folder, is overwritten.
    for (int attempt = 1; attempt < 1000 && folder_.empty(); ++attempt) {
        const fs::path candidate = TempsFolder() / ("export" + std::to_string(attempt));
        std::error_code ec;
        if (fs::create_directory(candidate, ec) && !ec) {
            folder_ = candidate;
        }
    }
    if (folder_.empty()) {
        editor_.desktop().ShowMessage(editor_.text("exportNoFolder") + "\r\n" +
                                          TempsFolder().string(),
                                      editor_.text("errorTitle"), MessageIcon::Exclamation);
        return false;
    }
    return true;
}

std::vector<fs::path> EntryExport::ExportTexture(const Entry& entry, const std::string& texture) {
    if (!MakeFreshFolder()) {
        return {};
    }
    const TextureExport result = ExportTextures(editor_.archive(), entry, folder_, texture);
    if (!result.problems.empty()) {
        std::string problems;
        for (const std::string& p : result.problems) {
            problems += "\r\n" + p;
        }
        editor_.desktop().ShowMessage(editor_.text("exportSkipped") + "\r\n" + problems,
                                      editor_.text("errorTitle"), MessageIcon::Exclamation);
    }
    // The folder is new: what is in it is what was written.
    std::vector<fs::path> files;
    std::error_code ec;
    for (const auto& file : fs::directory_iterator(folder_, ec)) {
        files.push_back(file.path());
    }
    return files;
}

std::vector<fs::path> EntryExport::ExportSelected() {
    RemoveExported();
    const EntryTable& table = editor_.table();
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            rows.push_back(row);
        }
    }
    if (rows.empty()) {
        return {};
    }
    if (!MakeFreshFolder()) {
        return {};
    }
    std::vector<fs::path> files;
    std::string problems;
    for (const std::size_t row : rows) {
        const ExtractResult result = ExtractEntryTo(editor_.archive(), row, folder_);
        if (!result.target || result.refused || !result.status.ok()) {
            problems += "\r\n" + StatusText(editor_.settings(), result.status);
            continue;
        }
        if (result.missingBytes > 0) {
            problems +=
                "\r\n" + StatusText(editor_.settings(),
                                    MissingBytesStatus(table[row].name, result.missingBytes));
        }
        files.push_back(*result.target);
    }
    if (!problems.empty()) {
        editor_.desktop().ShowMessage(editor_.text("exportSkipped") + "\r\n" + problems, "Error",
                                      MessageIcon::Exclamation);
    }
    return files;
}

} // namespace korvel
