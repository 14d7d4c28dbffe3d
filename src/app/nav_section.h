#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <optional>

// The sidebar's sections, in sidebar order. A section is named by its title.
class NavSection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(int count READ count CONSTANT)

public:
    enum Section { Overview, History, Champions, Rank, Friends, Search, Overlay };
    Q_ENUM(Section)

    explicit NavSection(QObject* parent = nullptr) : QObject(parent) {}

    [[nodiscard]] static int count() { return Overlay + 1; }
    [[nodiscard]] static QString titleOf(Section section);
    [[nodiscard]] static QString symbolOf(Section section);
    // The section with that exact title; none for any other text.
    [[nodiscard]] static std::optional<Section> fromTitle(const QString& title);

    Q_INVOKABLE QString title(int section) const { return titleOf(static_cast<Section>(section)); }
    Q_INVOKABLE QString symbol(int section) const { return symbolOf(static_cast<Section>(section)); }
};
