import QtQuick
import QuillFern.Theme

// A figure on glass: title, value with unit, and an optional meter.
GlassCard {
    id: root
    property string title
    property string value
    property string unit: ""
    property real meter: -1          // below 0: no meter
    // The meter's colour; the card itself stays plain glass.
    property color accent: Theme.gold

    Column {
        width: parent.width
        spacing: Theme.itemSpacing
        SectionLabel { text: root.title; width: parent.width }
        Row {
            spacing: Theme.smallSpacing
            ThemeText {
                id: valueText
                role: Theme.Display
                text: root.value
                font.weight: Font.Bold
                font.letterSpacing: -0.5
            }
            ThemeText {
                role: Theme.Footnote
                anchors.baseline: valueText.baseline
                visible: root.unit.length > 0
                text: root.unit
                color: Theme.textSecondary
                font.weight: Font.Medium
            }
        }
        MeterBar {
            width: parent.width
            visible: root.meter >= 0
            pct: root.meter
            tint: root.accent
        }
    }
}
