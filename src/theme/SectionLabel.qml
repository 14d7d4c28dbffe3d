import QtQuick
import QuillFern.Theme

Text {
    property real size: 11
    font.family: Theme.fontFamily
    font.pixelSize: size
    font.weight: Font.Bold
    font.letterSpacing: 0.7
    font.capitalization: Font.AllUppercase
    color: Theme.textDim
    elide: Text.ElideRight
}
