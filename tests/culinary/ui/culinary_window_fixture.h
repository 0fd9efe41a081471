// What the record window tests of this folder share: a frame as the windows see it, a small
// dictionary of the keys a test looks for, and the controls found by name.
#pragma once

#include "test_store.h"

#include "components/dataset.h"
#include "components/mdi_frame.h"
#include "components/messages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMap>
#include <QXmlStreamWriter>

/// The frame as the windows see it: a status panel, the quick search box, enabled commands and
/// the routes toggled ("Route+" shown, "Route-" hidden); a shown route's window is `window`.
class FakeFrame : public TMdiFrame {
public:
    QString status = QStringLiteral("unset");
    QString pattern;
    QMap<QString, bool> commands;
    QStringList toggled;
    QObject* window = nullptr;
    bool open = false;
    void SetStatusCount(const QString& text) override { status = text; }
    QString QuickSearchText() const override { return pattern; }
    void Toggle(const QString& route, bool show) override {
        toggled << route + (show ? "+" : "-");
        open = show;
    }
    QObject* ChildWindow(const QString&) const override { return open ? window : nullptr; }
    void CloseChild(QObject*) override {}
    void SetCommandEnabled(const QString& name, bool enabled) override { commands[name] = enabled; }
};

template <typename T> T* child(QObject& parent, const char* name) {
    T* found = parent.findChild<T*>(QLatin1String(name));
    if (!found)
        qFatal("no child %s", name);
    return found;
}

/// The values of one field over a dataset's rows, as text.
inline QStringList names(qm::Dataset& dataset, const QString& field) {
    QStringList result;
    for (int row = 0; row < dataset.RecordCount(); ++row)
        result << dataset.value(row, dataset.fieldIndex(field)).toString();
    return result;
}

/// A small real JPEG of one colour, its folder made; returns its bytes.
inline QByteArray WritePicture(const QString& path, const QColor& colour) {
    QImage image(24, 16, QImage::Format_RGB32);
    image.fill(colour);
    QDir().mkpath(QFileInfo(path).path());
    if (!image.save(path, "JPG"))
        qFatal("cannot write %s", qPrintable(path));
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

/// Installs a dictionary with the given entries for the store's holder.
inline void WriteDictionary(TestStore& store, const QMap<QString, QString>& entries) {
    const QString path = store.root() + QStringLiteral("Test.xml");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&file);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("dictionary"));
    xml.writeAttribute(QStringLiteral("language"), QStringLiteral("Test"));
    for (auto it = entries.constBegin(); it != entries.constEnd(); ++it) {
        xml.writeStartElement(QStringLiteral("entry"));
        xml.writeAttribute(QStringLiteral("key"), it.key());
        xml.writeCharacters(it.value());
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    file.close();
    store.holder().VintraDictionary.SetFileName(path);
}

/// Messages shown so far as "I:text", "Q:text", "E:text".
inline QStringList Shown(const TScriptedPresenter& presenter) {
    QStringList result;
    for (const auto& [kind, text] : presenter.shown)
        result << QStringLiteral("%1:%2").arg(kind == TMessagePresenter::Info       ? "I"
                                              : kind == TMessagePresenter::Question ? "Q"
                                                                                    : "E",
                                              text);
    return result;
}
