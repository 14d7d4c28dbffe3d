import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QuillFern.App
import QuillFern.Overlay
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// The signed-in window: sidebar on the left, toolbar and the selected section on the right.
Item {
    id: root
    property int selection: NavSection.Overview
    // The screen of the selected section.
    readonly property Component sectionView: {
        switch (selection) {
        case NavSection.Overview: return overviewView
        case NavSection.History: return historyView
        case NavSection.Champions: return championsView
        case NavSection.Rank: return rankView
        case NavSection.Friends: return friendsView
        case NavSection.Search: return searchView
        case NavSection.Overlay: return overlayView
        default: return null
        }
    }

    SidebarModel {
        id: sidebarModel
        appState: AppState
    }

    Wallpaper { anchors.fill: parent }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.preferredWidth: 232
            Layout.fillHeight: true
            model: sidebarModel
            selection: root.selection
            onSelect: section => root.selection = section
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            Toolbar {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.pageMargin
                Layout.rightMargin: Theme.pageMargin
                Layout.topMargin: 22
                title: NavSection.title(root.selection)
                accountLabel: sidebarModel.toolbarAccount
                onOpenSearch: root.selection = NavSection.Search
            }

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.margins: Theme.pageMargin
                Layout.topMargin: 18

                Loader {
                    id: section
                    anchors.fill: parent
                    active: root.sectionView !== null
                    sourceComponent: root.sectionView
                    onLoaded: HeapRelief.screenChanged()
                }

                // The sections still to come show their symbol and title.
                Column {
                    visible: !section.active
                    anchors.horizontalCenter: parent.horizontalCenter
                    anchors.top: parent.top
                    anchors.topMargin: 10
                    width: Math.min(parent.width, 560)
                    spacing: 24
                    Item { width: 1; height: 60 }
                    EmptyState {
                        anchors.horizontalCenter: parent.horizontalCenter
                        icon: NavSection.symbol(root.selection)
                        title: NavSection.title(root.selection)
                        message: ""
                    }
                }
            }
        }
    }

    Component {
        id: overviewView
        OverviewView {
            appState: AppState
            linkCard: Component { AddAccountCard {} }
            onOpenGame: matchServerId => root.openGame(matchServerId)
            onShowHistory: root.selection = NavSection.History // qmllint disable unqualified
        }
    }

    Component {
        id: championsView
        ChampionsView { appState: AppState }
    }

    Component {
        id: rankView
        RankView { appState: AppState }
    }

    Component {
        id: friendsView
        FriendsView { appState: AppState }
    }

    Component {
        id: searchView
        SearchView { appState: AppState }
    }

    Component {
        id: overlayView
        OverlayView { overlay: AppState.overlay }
    }

    Component {
        id: historyView
        HistoryView {
            appState: AppState
            onOpenGame: matchServerId => root.openGame(matchServerId)
        }
    }

    // The match detail opens as a sheet over the window.
    function openGame(matchServerId) {
        sheet.matchServerId = matchServerId
        sheet.open()
    }

    Popup {
        id: sheet
        property real matchServerId: 0
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(940, root.width - 40)
        height: Math.min(720, root.height - 40)
        padding: 0
        modal: true
        dim: true
        closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
        Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
        background: Rectangle { radius: Theme.panelRadius; color: Theme.wallBottom; border.width: 1; border.color: Qt.rgba(1, 1, 1, 0.12) }
        contentItem: Item {
            clip: true
            MatchDetailView {
                anchors.fill: parent
                appState: AppState
                matchServerId: sheet.matchServerId
                onCloseRequested: sheet.close()
                onTimelineRequested: root.openTimeline(sheet.matchServerId)
            }
        }
    }

    // The timeline of the game in the detail opens as a sheet over it.
    function openTimeline(matchServerId) {
        timelineSheet.matchServerId = matchServerId
        timelineSheet.open()
    }

    Popup {
        id: timelineSheet
        property real matchServerId: 0
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(860, root.width - 40)
        height: Math.min(720, root.height - 40)
        padding: 0
        modal: true
        dim: true
        closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
        Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.45) }
        background: Rectangle { radius: Theme.panelRadius; color: Theme.wallBottom; border.width: 1; border.color: Qt.rgba(1, 1, 1, 0.12) }
        contentItem: Item {
            clip: true
            // Built when the sheet opens and dropped when it closes: the fetch goes with it.
            Loader {
                anchors.fill: parent
                active: timelineSheet.visible
                sourceComponent: Component {
                    TimelineView {
                        appState: AppState
                        matchServerId: timelineSheet.matchServerId // qmllint disable unqualified
                        onCloseRequested: timelineSheet.close() // qmllint disable unqualified
                    }
                }
            }
        }
    }
}
