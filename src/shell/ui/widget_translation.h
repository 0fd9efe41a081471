#pragma once

class QAbstractItemView;
namespace qm {
class Dataset;
}

/// Teaches the translator the widgets whose texts are not properties: tab and tool box pages,
/// grid and tree column titles. Safe to call more than once.
void RegisterWidgetTranslation();

/// The dataset behind an item view whose model is a dataset model (through proxies); nullptr
/// when it has none.
qm::Dataset* DatasetOfView(const QAbstractItemView* view);
