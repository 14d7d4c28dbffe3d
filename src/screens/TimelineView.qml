import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// How one game unfolded, shown as a sheet over the match detail. The timeline is fetched when
// the sheet opens and dropped, with any request still running, when it closes.
Item {
    id: root
    required property AppState appState
    required property real matchServerId
    // Lets a host (or the screenshot tour) reach the timeline.
    readonly property TimelineModel model: timeline
    signal closeRequested()

    implicitWidth: 860
    implicitHeight: 720

    TimelineModel {
        id: timeline
        appState: root.appState
        matchServerId: root.matchServerId
    }
    Component.onCompleted: timeline.load()

    Wallpaper { anchors.fill: parent }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 22
        anchors.bottomMargin: 2
        spacing: Theme.blockSpacing

        // Header.
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.cardSpacing
            ChampionIcon { name: timeline.championName; size: 40; ring: true }
            ColumnLayout {
                spacing: 2
                DisplayTitle { text: "Timeline"; font.pixelSize: 22 }
                ThemeText {
                    role: Theme.Footnote
                    text: timeline.subtitle
                    color: Theme.textSecondary
                }
            }
            Item { Layout.fillWidth: true }
            Symbol {
                name: "xmark.circle.fill"
                size: 22
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

        Item {
            visible: timeline.busy
            Layout.fillWidth: true
            Layout.fillHeight: true
            BusyIndicator {
                anchors.centerIn: parent
                width: 36
                height: 36
                running: parent.visible
            }
        }
        Item {
            visible: !timeline.busy && timeline.hasError
            Layout.fillWidth: true
            Layout.fillHeight: true
            EmptyState {
                anchors.centerIn: parent
                width: Math.min(460, parent.width)
                icon: "clock.badge.xmark"
                title: "No timeline"
                message: timeline.errorText
            }
        }

        ScrollView {
            id: scroller
            visible: !timeline.busy && !timeline.hasError && timeline.hasSummary
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: -20
            Layout.rightMargin: -20
            contentWidth: availableWidth
            clip: true

            Column {
                width: scroller.availableWidth
                padding: 20
                spacing: Theme.sectionSpacing

                // Your game.
                GlassCard {
                    width: parent.width - 40
                    padding: 18
                    Column {
                        width: parent.width
                        spacing: Theme.cardSpacing
                        SectionLabel { text: "Your game" }
                        Grid {
                            id: figures
                            width: parent.width
                            columns: 4
                            spacing: 10
                            readonly property real cell: (width - 3 * spacing) / 4
                            Repeater {
                                model: timeline.figures
                                FigurePill {
                                    required property var modelData
                                    width: figures.cell // qmllint disable unqualified
                                    label: modelData.label
                                    value: modelData.value
                                    valueColor: modelData.color
                                }
                            }
                            Repeater {
                                model: timeline.objectives
                                FigurePill {
                                    required property var modelData
                                    width: figures.cell // qmllint disable unqualified
                                    isObjective: true
                                    label: modelData.label
                                    mine: modelData.mine
                                    enemy: modelData.enemy
                                }
                            }
                        }
                        ThemeText {
                            visible: timeline.hasFirstBlood
                            role: Theme.Footnote
                            width: parent.width
                            text: timeline.firstBloodText
                            color: timeline.firstBloodMine ? Theme.win : Theme.loss
                            wrapMode: Text.Wrap
                        }
                    }
                }

                // The gold difference.
                GlassCard {
                    width: parent.width - 40
                    padding: 18
                    Column {
                        width: parent.width
                        spacing: Theme.cardSpacing
                        SectionLabel { text: "Gold difference (your team − enemy)" }
                        GoldDiffChart {
                            visible: timeline.hasChart
                            width: parent.width
                            height: 240
                            chart: timeline
                        }
                        Item {
                            visible: !timeline.hasChart
                            width: parent.width
                            height: 120
                            ThemeText {
                                role: Theme.Callout
                                anchors.centerIn: parent
                                text: "Not enough data for this game."
                                color: Theme.textSecondary
                            }
                        }
                    }
                }

                // Key events, as received.
                GlassCard {
                    width: parent.width - 40
                    padding: 18
                    Column {
                        width: parent.width
                        spacing: Theme.itemSpacing
                        SectionLabel { text: "Key events" }
                        ThemeText {
                            visible: !timeline.hasEvents
                            role: Theme.Callout
                            text: "No notable events recorded."
                            color: Theme.textSecondary
                        }
                        Repeater {
                            model: timeline.events
                            Row {
                                id: event
                                required property string timeText
                                required property string symbol
                                required property string label
                                required property bool mine
                                height: 20
                                ThemeText {
                                    width: 42
                                    anchors.verticalCenter: parent.verticalCenter
                                    role: Theme.Caption
                                    text: event.timeText
                                    color: Theme.textDim
                                    font.weight: Font.DemiBold
                                }
                                Symbol {
                                    width: 18
                                    anchors.verticalCenter: parent.verticalCenter
                                    name: event.symbol
                                    size: 13
                                    color: event.mine ? Theme.win : Theme.loss
                                }
                                ThemeText {
                                    leftPadding: 6
                                    anchors.verticalCenter: parent.verticalCenter
                                    role: Theme.Body
                                    text: event.label
                                    color: Theme.textSecondary
                                }
                            }
                        }
                    }
                }
            }
        }
        Item {
            visible: !timeline.busy && !timeline.hasError && !timeline.hasSummary
            Layout.fillHeight: true
        }
    }
}
