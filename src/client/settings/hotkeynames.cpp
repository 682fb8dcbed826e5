#include "client/settings/hotkeynames.h"

#include <Qt>
#include <unordered_map>

namespace client {

namespace HotKeys {

QString displayName(int virtualKey)
{
    if ((virtualKey >= 48 && virtualKey <= 57) || (virtualKey >= 65 && virtualKey <= 90))
        return QString(QChar(char16_t(virtualKey)));
    if (virtualKey >= 112 && virtualKey <= 123)
        return u'F' + QString::number(virtualKey - 111);
    return {};
}

int virtualKeyFromQtKey(int qtKey, bool keypad)
{
    if (keypad && qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
        return 96 + (qtKey - Qt::Key_0);
    if ((qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) || (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z))
        return qtKey; // Qt numbers these keys by their ASCII code, as Windows does
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return 112 + (qtKey - Qt::Key_F1);

    static const std::unordered_map<int, int> table = {
        {Qt::Key_Backspace, 8},
        {Qt::Key_Tab, 9},
        {Qt::Key_Backtab, 9},
        {Qt::Key_Clear, 12},
        {Qt::Key_Return, 13},
        {Qt::Key_Enter, 13},
        {Qt::Key_Shift, 16},
        {Qt::Key_Control, 17},
        {Qt::Key_Alt, 18},
        {Qt::Key_AltGr, 18},
        {Qt::Key_Pause, 19},
        {Qt::Key_CapsLock, 20},
        {Qt::Key_Escape, 27},
        {Qt::Key_Space, 32},
        {Qt::Key_PageUp, 33},
        {Qt::Key_PageDown, 34},
        {Qt::Key_End, 35},
        {Qt::Key_Home, 36},
        {Qt::Key_Left, 37},
        {Qt::Key_Up, 38},
        {Qt::Key_Right, 39},
        {Qt::Key_Down, 40},
        {Qt::Key_Print, 44},
        {Qt::Key_Insert, 45},
        {Qt::Key_Delete, 46},
        {Qt::Key_Meta, 91},
        {Qt::Key_Super_L, 91},
        {Qt::Key_Super_R, 92},
        {Qt::Key_Menu, 93},
        {Qt::Key_NumLock, 144},
        {Qt::Key_ScrollLock, 145},
        // Shifted digits of a US keyboard.
        {Qt::Key_Exclam, 49},
        {Qt::Key_At, 50},
        {Qt::Key_NumberSign, 51},
        {Qt::Key_Dollar, 52},
        {Qt::Key_Percent, 53},
        {Qt::Key_AsciiCircum, 54},
        {Qt::Key_Ampersand, 55},
        {Qt::Key_Asterisk, 56},
        {Qt::Key_ParenLeft, 57},
        {Qt::Key_ParenRight, 48},
        // Punctuation keys (the OEM codes of a US keyboard), plain and shifted.
        {Qt::Key_Semicolon, 186},
        {Qt::Key_Colon, 186},
        {Qt::Key_Equal, 187},
        {Qt::Key_Plus, 187},
        {Qt::Key_Comma, 188},
        {Qt::Key_Less, 188},
        {Qt::Key_Minus, 189},
        {Qt::Key_Underscore, 189},
        {Qt::Key_Period, 190},
        {Qt::Key_Greater, 190},
        {Qt::Key_Slash, 191},
        {Qt::Key_Question, 191},
        {Qt::Key_QuoteLeft, 192},
        {Qt::Key_AsciiTilde, 192},
        {Qt::Key_BracketLeft, 219},
        {Qt::Key_BraceLeft, 219},
        {Qt::Key_Backslash, 220},
        {Qt::Key_Bar, 220},
        {Qt::Key_BracketRight, 221},
        {Qt::Key_BraceRight, 221},
        {Qt::Key_Apostrophe, 222},
        {Qt::Key_QuoteDbl, 222},
    };
    if (keypad) {
        switch (qtKey) {
        case Qt::Key_Asterisk:
            return 106;
        case Qt::Key_Plus:
            return 107;
        case Qt::Key_Minus:
            return 109;
        case Qt::Key_Period:
            return 110;
        case Qt::Key_Slash:
            return 111;
        default:
            break;
        }
    }
    const auto it = table.find(qtKey);
    return it == table.end() ? 0 : it->second;
}

} // namespace HotKeys

} // namespace client
