#include "ui/ModelPage.h"

namespace korvel::ui {

ModelPage::ModelPage(Editor& editor, QWidget* parent) : QWidget(parent), editor_(editor) {}

ModelPage::~ModelPage() = default;

void ModelPage::ShowModel(const ModelInfo&, const TextureImages&, const std::vector<std::string>&) {
}

void ModelPage::Clear() {}

void ModelPage::Relabel() {}

} // namespace korvel::ui
