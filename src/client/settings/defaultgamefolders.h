#pragma once

#include <QString>

namespace client {

class Options;

// Where the games are installed when the user never chose a folder: their installers' default
// folders on drive C, which under Wine is the prefix's drive_c. A folder counts as found when
// the game's executable is in it (names compared without regard to case, as on Windows).
class DefaultGameFolders
{
public:
    // `driveC` is the folder that stands for "C:\" (the Wine prefix's drive_c).
    explicit DefaultGameFolders(QString driveC) : m_driveC(std::move(driveC)) {}
    static DefaultGameFolders forWinePrefix(const QString &prefix);

    // The Rogue Spear folder (holding roguespear.exe) or the Black Ops folder (holding
    // R6BO.exe) at its default place; empty when the executable is not there.
    QString rogueSpear() const;
    QString blackOps() const;

    // Fills each empty game folder of `options` that has a default installation. False when
    // both folders are still empty afterwards: the user must choose one.
    bool fillEmpty(Options &options) const;

    static QString missingMessage()
    {
        return QStringLiteral("Could not find path to game, select at least one game in options");
    }

private:
    QString find(const QString &gameFolder, const QString &executable) const;

    QString m_driveC;
};

} // namespace client
