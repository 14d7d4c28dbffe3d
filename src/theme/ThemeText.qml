import QtQuick
import QuillFern.Theme

// Text in the app's typeface at one size of the theme's scale. The colour defaults to the
// primary text colour; weight, colour and size stay the caller's to change.
Text {
    property int role: Theme.Body

    font.family: Theme.fontFamily
    font.pixelSize: Theme.fontSize(role)
    color: Theme.text
}
