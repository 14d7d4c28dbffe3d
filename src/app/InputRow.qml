import QtQuick
import QtQuick.Controls.Basic
import QuillFern.Theme

// A rounded input field with a leading symbol.
Rectangle {
    id: root
    property string icon
    property alias placeholder: field.placeholderText
    property alias text: field.text
    property bool secret: false
    signal accepted()

    implicitHeight: 44
    radius: Theme.buttonRadius
    color: Qt.rgba(1, 1, 1, 0.05)
    border.width: 1
    border.color: field.activeFocus ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.6) : Qt.rgba(1, 1, 1, 0.1)

    Symbol {
        id: glyph
        anchors.left: parent.left
        anchors.leftMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        name: root.icon
        size: 16
        color: Theme.textDim
    }
    TextField {
        id: field
        anchors.left: glyph.right
        anchors.leftMargin: 8
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        echoMode: root.secret ? TextInput.Password : TextInput.Normal
        color: Theme.text
        placeholderTextColor: Theme.textDim
        selectionColor: Theme.gold
        font.family: Theme.fontFamily
        font.pixelSize: Theme.fontSize(Theme.Callout)
        background: null
        onAccepted: root.accepted()
    }
}
