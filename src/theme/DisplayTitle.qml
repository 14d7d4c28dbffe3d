import QtQuick
import QuillFern.Theme

Text {
    property real size: 26
    font.family: Theme.fontFamily
    font.pixelSize: size
    font.weight: Font.Bold
    font.letterSpacing: -0.5
    color: "white"
    elide: Text.ElideRight
}
