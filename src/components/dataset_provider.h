#pragma once

#include <QObject>

namespace qm {
class Dataset;
}

/// A data-aware control: tells the frame's navigator actions which dataset it shows. A grid (or
/// any control bound to a dataset) inherits it beside its widget class.
class TDatasetProvider {
public:
    virtual ~TDatasetProvider() = default;
    /// The dataset the control is bound to now, nullptr when none.
    virtual qm::Dataset* ProvidedDataset() const = 0;
};

/// The dataset of the data-aware control at `object` or among its parents, up to and including
/// `boundary`; nullptr when none of them provides one.
inline qm::Dataset* FindProvidedDataset(QObject* object, const QObject* boundary = nullptr) {
    for (QObject* o = object; o; o = o->parent()) {
        if (const auto* provider = dynamic_cast<const TDatasetProvider*>(o))
            return provider->ProvidedDataset();
        if (o == boundary)
            break;
    }
    return nullptr;
}
