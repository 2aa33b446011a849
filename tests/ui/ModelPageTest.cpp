// The preview's model page: a model handed to it fills the frame tree, the
// counts, the texture list with the missing ones marked and the line saying
// where reading stopped; the shading buttons reach the view; Clear empties it.
#include "UiSupport.h"

#include "ui/ModelPage.h"
#include "ui/ModelView.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTreeWidget>

class ModelPageTest : public QObject {
    Q_OBJECT
private slots:
    void showsWhatTheModelHolds();
    void remembersTheShading();
};

void ModelPageTest::showsWhatTheModelHolds() {
    korvel::test::WindowEnv env;
    env.settings.WriteSetting("deutsch", "language");
    korvel::ui::ModelPage page(env.start().editor());
    korvel::ModelInfo model;
    model.frames = {{"car", -1}, {"", 0}, {"wheel", 1}, {"light", 0}};
    korvel::ModelGeometry g;
    g.vertexCount = 3;
    g.triangleCount = 1;
    g.positions = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    g.triangles = {{0, 1, 2, 0}};
    g.materials = {{{255, 255, 255, 255}, "Body", ""}, {{255, 255, 255, 255}, "glass", ""}};
    model.geometries = {g, g};
    model.atomics = {{2, 0}};
    model.stopped = {"a chunk lacks its struct", "whyDffNoStruct", {}};
    model.stoppedAt = 123;
    page.ShowModel(model, {}, {"GLASS"});

    auto* frames = page.findChild<QTreeWidget*>("modelFrames");
    QCOMPARE(frames->topLevelItemCount(), 1);
    const QTreeWidgetItem* root = frames->topLevelItem(0);
    QCOMPARE(root->text(0) + "(" + root->child(0)->text(0) + "(" +
                 root->child(0)->child(0)->text(0) + ")" + root->child(1)->text(0) + ")",
             QStringLiteral("car(#1(wheel)light)"));
    QCOMPARE(page.findChild<QLabel*>("modelCounts")->text(),
             QStringLiteral("Geometrien: 2\nEckpunkte: 6\nDreiecke: 2\nMaterialien: 4"));
    auto* textures = page.findChild<QTreeWidget*>("modelTextures");
    QCOMPARE(textures->topLevelItemCount(), 2);
    QCOMPARE(textures->topLevelItem(0)->text(0) + "|" + textures->topLevelItem(1)->text(0),
             QStringLiteral("Body|glass (fehlt)"));
    auto* stopped = page.findChild<QLabel*>("modelStopped");
    QCOMPARE(stopped->text(),
             QStringLiteral("Lesen bei Byte 123 angehalten: einem Block fehlt seine Struktur"));
    QVERIFY(!stopped->isHidden());

    auto* view = page.findChild<korvel::ui::ModelView*>("modelView");
    page.findChild<QAbstractButton*>("modelWire")->click();
    QCOMPARE(view->shading(), korvel::ModelShading::Wireframe);
    page.findChild<QAbstractButton*>("modelFlat")->click();
    QCOMPARE(view->shading(), korvel::ModelShading::Flat);

    // A chain of frames each the child of the one before is listed only so
    // deep and so long.
    model.frames.clear();
    for (int i = 0; i < 5000; ++i)
        model.frames.push_back({"f", i - 1});
    page.ShowModel(model, {}, {});
    QCOMPARE(frames->topLevelItemCount(), 4096 / 65 + 2); // chains of 65, the rest, "more"
    QCOMPARE(frames->topLevelItem(frames->topLevelItemCount() - 1)->text(0),
             QStringLiteral("… und 904 weitere Knoten, nicht aufgeführt"));

    page.Clear();
    QCOMPARE(frames->topLevelItemCount() + textures->topLevelItemCount(), 0);
    QVERIFY(page.findChild<QLabel*>("modelCounts")->text().isEmpty() && stopped->isHidden());
}

QTEST_MAIN(ModelPageTest)
// A page starts with the shading korvel.ini holds (any case; else flat).
void ModelPageTest::remembersTheShading() {
    korvel::test::WindowEnv env;
    korvel::Editor& editor = env.start().editor();
    const std::pair<const char*, korvel::ModelShading> stored[] = {
        {"WIRE", korvel::ModelShading::Wireframe}, {"shiny", korvel::ModelShading::Flat}};
    for (const auto& [word, shading] : stored) {
        env.settings.WriteSetting(word, "modelShading");
        korvel::ui::ModelPage page(editor);
        QCOMPARE(page.findChild<korvel::ui::ModelView*>("modelView")->shading(), shading);
    }
    korvel::ui::ModelPage page(editor);
    page.findChild<QAbstractButton*>("modelSmooth")->click();
    QCOMPARE(env.settings.ReadSetting("modelShading"), std::string("smooth"));
}

#include "ModelPageTest.moc"
