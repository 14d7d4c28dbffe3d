#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

// The symbol names the screens use, each drawn as one glyph of the bundled icon font.
class Symbols : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)

public:
    explicit Symbols(QObject* parent = nullptr) : QObject(parent) {}

    static QString fontFamily() { return QStringLiteral("Material Icons"); }
    // The glyph for a symbol name; empty for a name the table does not know.
    [[nodiscard]] static QString glyphFor(const QString& name);
    [[nodiscard]] static QStringList names();

    Q_INVOKABLE QString glyph(const QString& name) const { return glyphFor(name); }
};
