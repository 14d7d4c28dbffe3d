import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// One game in full, shown as a sheet over the window.
Item {
    id: root
    required property AppState appState
    required property real matchServerId
    signal closeRequested()
    signal timelineRequested()

    implicitWidth: 940
    implicitHeight: 720

    MatchDetailModel {
        id: detail
        appState: root.appState
        matchServerId: root.matchServerId
    }

    Wallpaper { anchors.fill: parent }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 22
        spacing: Theme.sectionSpacing

        // Header.
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.blockSpacing
            ChampionIcon { name: detail.championName; size: 56; ring: true }
            ColumnLayout {
                spacing: 3
                ThemeText {
                    role: Theme.Title
                    text: detail.championName
                    font.weight: Font.Bold
                }
                ModeChip { text: detail.categoryChip; tint: detail.categoryColor }
                ThemeText {
                    role: Theme.Footnote
                    text: detail.headerLine
                    color: Theme.textSecondary
                }
                ThemeText {
                    role: Theme.Body
                    text: detail.resultText
                    color: detail.win ? Theme.win : Theme.loss
                    font.weight: Font.Bold
                }
            }
            Item { Layout.fillWidth: true }
            Rectangle {
                Layout.preferredHeight: 30
                Layout.preferredWidth: timelineRow.implicitWidth + 24
                radius: 15
                color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.16)
                border.width: 0.5
                border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.6)
                Row {
                    id: timelineRow
                    anchors.centerIn: parent
                    spacing: Theme.inlineSpacing
                    Symbol { name: "chart.xyaxis.line"; size: 14; color: Theme.goldBright }
                    ThemeText {
                        role: Theme.Footnote
                        anchors.verticalCenter: parent.verticalCenter
                        text: "Timeline"
                        color: Theme.goldBright
                        font.weight: Font.DemiBold
                    }
                }
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.timelineRequested()
                }
            }
            Symbol {
                name: "xmark.circle.fill"
                size: 26
                color: closeArea.containsMouse ? Theme.text : Theme.textDim
                MouseArea {
                    id: closeArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.closeRequested()
                }
            }
        }

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            Column {
                width: parent.width
                spacing: Theme.blockSpacing
                Repeater {
                    model: detail.teams
                    GlassCard {
                        id: block
                        required property var modelData
                        width: parent.width
                        padding: 12
                        Column {
                            width: parent.width
                            spacing: Theme.smallSpacing
                            Row {
                                spacing: Theme.controlSpacing
                                leftPadding: 4
                                bottomPadding: 4
                                ThemeText {
                                    role: Theme.Callout
                                    text: block.modelData.title
                                    font.weight: Font.Bold
                                }
                                ThemeText {
                                    role: Theme.Body
                                    text: block.modelData.resultText
                                    color: block.modelData.win ? Theme.win : Theme.loss
                                    font.weight: Font.DemiBold
                                }
                                ThemeText {
                                    role: Theme.Body
                                    text: block.modelData.totals
                                    color: Theme.textSecondary
                                }
                            }
                            Repeater {
                                model: block.modelData.rows
                                ParticipantLine {
                                    required property var modelData
                                    width: parent.width
                                    line: modelData
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
