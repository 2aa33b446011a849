// Pictures of the preview's model page on its own, for the README and for
// checking the 3D view by eye: reads a model file and texture dictionary
// files (their textures found by name, as in an archive), shows the page at
// a given size and writes what it draws as PNG.
//
//   korvel-model-shot MODEL.dff [TEXTURES.txd...] OUT.png [--size WxH]
//                     [--shading flat|smooth|wire] [--show]
//
// With --show the page stays open to be turned and zoomed by hand; OUT.png
// is then not written.
#include "platform/Cp1252.h"
#include "preview/Textures.h"
#include "settings/Settings.h"
#include "ui/ModelPage.h"
#include "ui/QtDesktop.h"
#include "window/Editor.h"

#include <QAbstractButton>
#include <QApplication>

#include <cstdio>
#include <fstream>
#include <iterator>

using namespace korvel;

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    std::vector<std::string> files;
    QSize size(900, 560);
    QString shading = QStringLiteral("smooth");
    bool keepOpen = false;
    for (int i = 1; i < argc; ++i) {
        const QString a = QString::fromLocal8Bit(argv[i]);
        if (a == "--size" && i + 1 < argc) {
            const QStringList wh = QString::fromLocal8Bit(argv[++i]).split('x');
            size = QSize(wh.value(0).toInt(), wh.value(1).toInt());
        } else if (a == "--shading" && i + 1 < argc) {
            shading = QString::fromLocal8Bit(argv[++i]);
        } else if (a == "--show") {
            keepOpen = true;
        } else {
            files.emplace_back(argv[i]);
        }
    }
    if (files.size() < 2 || size.isEmpty()) {
        std::fprintf(stderr, "usage: korvel-model-shot MODEL.dff [TEXTURES.txd...] OUT.png "
                             "[--size WxH] [--shading flat|smooth|wire] [--show]\n");
        return 2;
    }
    const ModelInfo model = ReadModel(ReadAll(files[0]));
    TextureImages textures;
    for (std::size_t f = 1; f + 1 < files.size(); ++f) {
        const std::string bytes = ReadAll(files[f]);
        MemorySource source(bytes);
        for (const TextureInfo& t : ReadTextureDictionary(source, 0, bytes.size()).textures) {
            DecodedImage d = DecodeTextureLevel(source, 0, t, 0);
            if (d.problem.empty()) {
                textures[ToLowerCp1252(t.name)] = std::move(d.image);
            }
        }
    }
    std::vector<std::string> missing;
    for (const std::string& name : ModelTextureNames(model)) {
        if (textures.count(ToLowerCp1252(name)) == 0) {
            missing.push_back(name);
        }
    }
    Settings settings = Settings::InMemory(KORVEL_LANG_INI);
    ui::QtDesktop desktop(nullptr);
    Editor editor(desktop, settings, ".");
    ui::ModelPage page(editor);
    page.resize(size);
    page.ShowModel(model, textures, missing);
    const QString button = shading == "flat"   ? "modelFlat"
                           : shading == "wire" ? "modelWire"
                                               : "modelSmooth";
    page.findChild<QAbstractButton*>(button)->click();
    page.show();
    if (keepOpen) {
        return QApplication::exec();
    }
    app.processEvents();
    if (!page.grab().save(QString::fromLocal8Bit(files.back().c_str()), "PNG")) {
        std::fprintf(stderr, "korvel-model-shot: %s could not be written\n", files.back().c_str());
        return 1;
    }
    return 0;
}
