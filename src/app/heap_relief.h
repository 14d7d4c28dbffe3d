#pragma once

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

// Gives the allocator's free memory back to the system a moment after the shown screen changed.
// A screen's figures are freed when it closes, but the C library keeps freed memory inside the
// process for reuse; the player keeps the app open beside the game for hours, and that memory is
// the game's. Nothing is trimmed while screens are being switched in quick succession.
class HeapRelief : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    static constexpr int quietMs = 2'000;

    explicit HeapRelief(QObject* parent = nullptr);

    Q_INVOKABLE void screenChanged();

private:
    QTimer m_quiet;
};
