#include "overlay/strip_window.h"

#include "overlay/skill_strip_model.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QSurfaceFormat>

StripWindow::StripWindow(SkillStripModel* model) {
    // Tool: no taskbar entry; WindowTransparentForInput: on X11 an empty input shape, so the
    // game receives every click; WindowDoesNotAcceptFocus: the window manager never focuses it.
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
             Qt::WindowDoesNotAcceptFocus);
    // Read by Qt's X11 platform: mapping the window does not activate it either.
    setProperty("_q_showWithoutActivating", true);
    QSurfaceFormat surface = format();
    surface.setAlphaBufferSize(8);
    setFormat(surface);
    setColor(Qt::transparent);
    setTitle(QStringLiteral("Quill Fern overlay"));
    resize(initialWidth, initialHeight);
    setResizeMode(QQuickView::SizeViewToRootObject);
    engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    setInitialProperties({{QStringLiteral("model"), QVariant::fromValue(model)}});
    setSource(QUrl(QStringLiteral("qrc:/qt/qml/QuillFern/Overlay/SkillOrderView.qml")));
}

QSize StripWindow::fittingSize() const {
    const QQuickItem* root = rootObject();
    if (!root)
        return QSize(initialWidth, initialHeight);
    return QSize(qCeil(root->implicitWidth()), qCeil(root->implicitHeight()));
}

void StripWindow::place(const QPoint& origin) {
    const QRect frame(origin, fittingSize());
    if (geometry() != frame)
        setGeometry(frame);
    if (!isVisible())
        show();
}
