import QtQuick
import QtQuick.Controls
import QuillFern.Theme

// Friends who were on the user's team. Where the row is short of room the names are elided and
// the whole list shows on hover.
Rectangle {
    id: root
    property string text
    property real maximumWidth: Infinity
    property bool hovered: false

    readonly property real padding: 14
    readonly property bool elided: label.truncated

    implicitWidth: Math.min(content.implicitWidth + padding, maximumWidth)
    width: implicitWidth
    implicitHeight: 20
    radius: height / 2
    color: Qt.rgba(Theme.teal.r, Theme.teal.g, Theme.teal.b, 0.14)
    clip: true

    Row {
        id: content
        x: root.padding / 2
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.smallSpacing
        Symbol { id: icon; name: "person.2.fill"; size: 10; color: Theme.teal; anchors.verticalCenter: parent.verticalCenter }
        ThemeText {
            id: label
            role: Theme.Small
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(0, Math.min(implicitWidth, root.maximumWidth - root.padding - icon.width - content.spacing))
            text: root.text
            elide: Text.ElideRight
            color: Theme.teal
            font.weight: Font.DemiBold
        }
    }

    ToolTip.visible: root.hovered && root.elided
    ToolTip.text: root.text
    ToolTip.delay: 400
}
