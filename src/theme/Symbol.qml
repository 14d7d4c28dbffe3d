import QtQuick
import QuillFern.Theme

// One symbol of the icon font, by its symbol name.
Text {
    property string name
    property real size: 14
    text: Symbols.glyph(name)
    font.family: Symbols.fontFamily
    font.pixelSize: size
    color: Theme.text
    verticalAlignment: Text.AlignVCenter
    horizontalAlignment: Text.AlignHCenter
}
