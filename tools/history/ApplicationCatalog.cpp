// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/ApplicationCatalog.h"

namespace {

//                        typing            keys clicks scrolls inches    down     up
constexpr Pace Browser{Typing::Browsing, 24, 6.5, 5.5, 26, 2600, 130};
constexpr Pace Chat{Typing::Prose, 62, 3, 2.2, 12, 120, 60};
constexpr Pace Mail{Typing::Prose, 52, 4, 2.4, 15, 90, 30};
constexpr Pace Call{Typing::Prose, 6, 1.2, 0.3, 7, 5200, 4100};
constexpr Pace CodeEditor{Typing::Code, 82, 3.2, 3.5, 14, 25, 6};
constexpr Pace Terminal{Typing::Commands, 74, 1.4, 1.2, 7, 420, 90};
constexpr Pace Writer{Typing::Prose, 105, 2.6, 1.6, 11, 3, 1};
constexpr Pace Sheet{Typing::Numbers, 58, 7, 2.8, 20, 2, 1};
constexpr Pace Reader{Typing::Browsing, 5, 2.4, 6.5, 13, 12, 1};
constexpr Pace Files{Typing::Browsing, 12, 11, 2.6, 28, 30, 20};
constexpr Pace Drawing{Typing::Game, 16, 15, 2, 62, 4, 1};
constexpr Pace Player{Typing::Game, 3, 1.4, 0.6, 6, 1500, 25};
constexpr Pace Tool{Typing::Browsing, 14, 7, 1.2, 17, 8, 2};
constexpr Pace ActionGame{Typing::Game, 92, 26, 2.5, 88, 380, 260};
constexpr Pace StrategyGame{Typing::Game, 21, 31, 4, 71, 60, 40};
constexpr Pace CardGame{Typing::Game, 2, 14, 0.2, 32, 1, 1};

//   path, name, liking in general, at work, for games, for the side project, pace, from, to
constexpr std::array Catalog{
    Application{"/usr/bin/firefox", "Firefox", {9, 5, 0.6, 4}, &Browser, 0, 1},
    Application{"/usr/bin/chromium", "Chromium", {1, 3.5, 0.2, 1}, &Browser, 0.12, 1},
    Application{"/usr/bin/epiphany", "GNOME Web", {1, 0.1, 0, 0.1}, &Browser, 0, 0.3},
    Application{"/usr/bin/falkon", "Falkon", {0.8, 0.1, 0, 0.2}, &Browser, 0.22, 0.38},
    Application{"/usr/lib/tor-browser/firefox", "Tor Browser", {0.3, 0, 0, 0}, &Browser, 0.4, 1},
    Application{"/usr/bin/thunderbird", "Thunderbird", {2.2, 3, 0, 0.2}, &Mail, 0.08, 1},
    Application{"/usr/bin/evolution", "Evolution", {2, 3, 0, 0.1}, &Mail, 0, 0.15},
    Application{"/usr/bin/geary", "Geary", {0.7, 0, 0, 0}, &Mail, 0.5, 0.64},
    Application{"/usr/bin/pidgin", "Pidgin", {1.8, 0.6, 0.4, 0}, &Chat, 0, 0.33},
    Application{"/usr/bin/hexchat", "HexChat", {1, 0.2, 0.2, 1.2}, &Chat, 0, 0.55},
    Application{"/opt/Element/element-desktop", "Element", {1.7, 2.2, 0.5, 1}, &Chat, 0.42, 1},
    Application{"/usr/bin/signal-desktop", "Signal", {2.2, 0.2, 0.2, 0.1}, &Chat, 0.3, 1},
    Application{"/usr/bin/telegram-desktop", "Telegram", {1.2, 0.1, 0.3, 0}, &Chat, 0.25, 0.7},
    Application{"/usr/bin/mumble", "Mumble", {0.1, 0, 1.1, 0.1}, &Call, 0.1, 1},
    Application{"/usr/bin/jitsi-meet", "Jitsi Meet", {0.2, 1.2, 0, 0}, &Call, 0.36, 1},
    Application{"/usr/bin/gnome-terminal", "Terminal", {1, 4, 0.1, 4}, &Terminal, 0, 0.62},
    Application{"/usr/bin/konsole", "Konsole", {0.3, 1, 0, 0.8}, &Terminal, 0.05, 0.2},
    Application{"/usr/bin/alacritty", "Alacritty", {1, 4.4, 0.1, 4.5}, &Terminal, 0.58, 1},
    Application{"/usr/bin/xterm", "XTerm", {0.1, 0.3, 0, 0.3}, &Terminal, 0, 1},
    Application{"/usr/bin/emacs", "Emacs", {0.2, 2.5, 0, 2}, &CodeEditor, 0, 0.4},
    Application{"/usr/bin/gvim", "GVim", {0.2, 1.4, 0, 1.2}, &CodeEditor, 0, 0.48},
    Application{"/usr/bin/nvim-qt", "Neovim", {0.1, 1.6, 0, 2.2}, &CodeEditor, 0.5, 1},
    Application{"/usr/bin/qtcreator", "Qt Creator", {0, 4, 0, 3.5}, &CodeEditor, 0.28, 1},
    Application{"/usr/bin/kate", "Kate", {0.5, 1.4, 0, 0.8}, &CodeEditor, 0.2, 1},
    Application{"/usr/bin/codium", "VSCodium", {0.1, 2.8, 0, 2}, &CodeEditor, 0.46, 1},
    Application{"/usr/bin/geany", "Geany", {0.2, 0.8, 0, 0.6}, &CodeEditor, 0, 0.24},
    Application{"/usr/bin/gedit", "Text Editor", {0.5, 0.5, 0, 0.2}, &Writer, 0, 0.66},
    Application{"/usr/bin/gnome-text-editor", "Text Editor", {0.5, 0.4, 0, 0.2}, &Writer, 0.66, 1},
    Application{"/usr/bin/soffice", "LibreOffice", {0.4, 1.2, 0, 0}, &Writer, 0, 1},
    Application{"/usr/lib/libreoffice/program/scalc", "Calc", {0.4, 1.8, 0, 0}, &Sheet, 0.03, 1},
    Application{"/usr/bin/gnumeric", "Gnumeric", {0.2, 0.8, 0, 0}, &Sheet, 0, 0.18},
    Application{"/usr/bin/zettlr", "Zettlr", {0.4, 0.3, 0, 0.6}, &Writer, 0.52, 0.86},
    Application{"/usr/bin/joplin", "Joplin", {0.7, 0.7, 0, 0.4}, &Writer, 0.61, 1},
    Application{"/usr/bin/lyx", "LyX", {0.2, 0.4, 0, 0}, &Writer, 0.02, 0.28},
    Application{"/usr/bin/evince", "Document Viewer", {0.8, 1.2, 0, 0.6}, &Reader, 0, 1},
    Application{"/usr/bin/okular", "Okular", {0.3, 0.9, 0, 0.4}, &Reader, 0.3, 1},
    Application{"/usr/bin/calibre", "calibre", {0.5, 0, 0, 0}, &Reader, 0.26, 1},
    Application{"/usr/bin/nautilus", "Files", {1.7, 1.1, 0.2, 0.6}, &Files, 0, 1},
    Application{"/usr/bin/dolphin", "Dolphin", {0.3, 0.2, 0, 0.1}, &Files, 0.05, 0.2},
    Application{"/usr/bin/filezilla", "FileZilla", {0.1, 0.5, 0, 0.2}, &Files, 0, 0.44},
    Application{"/usr/bin/transmission-gtk", "Transmission", {0.2, 0, 0.1, 0}, &Files, 0.07, 1},
    Application{"/usr/bin/gimp", "GIMP", {0.7, 0.4, 0, 0.7}, &Drawing, 0, 1},
    Application{"/usr/bin/inkscape", "Inkscape", {0.2, 0.5, 0, 0.9}, &Drawing, 0.16, 1},
    Application{"/usr/bin/krita", "Krita", {0.5, 0, 0, 0.3}, &Drawing, 0.38, 1},
    Application{"/usr/bin/darktable", "darktable", {0.9, 0, 0, 0}, &Drawing, 0.31, 1},
    Application{"/usr/bin/blender", "Blender", {0.2, 0, 0, 1.2}, &Drawing, 0.55, 0.95},
    Application{"/usr/bin/vlc", "VLC", {1.4, 0.1, 0, 0.1}, &Player, 0, 1},
    Application{"/usr/bin/rhythmbox", "Rhythmbox", {0.6, 0.3, 0, 0.3}, &Player, 0, 0.57},
    Application{"/usr/bin/strawberry", "Strawberry", {0.7, 0.4, 0, 0.4}, &Player, 0.57, 1},
    Application{"/usr/bin/audacity", "Audacity", {0.3, 0, 0, 0.4}, &Tool, 0.19, 0.8},
    Application{"/usr/bin/gnome-control-center", "Settings", {0.4, 0.2, 0, 0.1}, &Tool, 0, 1},
    Application{"/usr/bin/gnome-system-monitor", "System Monitor", {0.2, 0.2, 0, 0.1}, &Tool, 0, 1},
    Application{
        "/usr/bin/virt-manager", "Virtual Machine Manager", {0, 0.8, 0, 0.5}, &Tool, 0.34, 1},
    Application{"/usr/bin/dbeaver", "DBeaver", {0, 1.1, 0, 0.3}, &CodeEditor, 0.47, 1},
    Application{"/usr/games/supertuxkart", "SuperTuxKart", {0, 0, 3, 0}, &ActionGame, 0.02, 0.5},
    Application{"/usr/games/xonotic", "Xonotic", {0, 0, 2.6, 0}, &ActionGame, 0.1, 0.72},
    Application{"/usr/games/0ad", "0 A.D.", {0, 0, 3, 0}, &StrategyGame, 0.24, 1},
    Application{"/usr/games/wesnoth", "Battle for Wesnoth", {0, 0, 2.2, 0}, &StrategyGame, 0, 1},
    Application{"/usr/bin/luanti", "Luanti", {0, 0, 3.4, 0}, &ActionGame, 0.6, 1},
    Application{"/usr/games/sol", "AisleRiot", {0.5, 0.05, 0.8, 0}, &CardGame, 0, 1},
};

} // namespace

std::span<const Application> applicationCatalog()
{
    return Catalog;
}
