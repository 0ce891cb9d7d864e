// The numbers of screens, controls and commands. Those of a screen are what scripts and tests know
// it by.
#pragma once

#include "platform/dialogs.h"

namespace tabelion {

inline constexpr int kAboutScreen = 103;
inline constexpr int kChooserScreen = 105;
inline constexpr int kRecordListScreen = 106;
inline constexpr int kEditRecordScreen = 109;
inline constexpr int kPasswordScreen = 110;
inline constexpr int kNoteScreen = 111;
inline constexpr int kSearchScreen = 118;
inline constexpr int kEditViewsScreen = 124;
inline constexpr int kEditViewScreen = 125;
inline constexpr int kFieldsSetupScreen = 126;
inline constexpr int kDatabaseInfoScreen = 127;
inline constexpr int kRecordDetailsScreen = 130;
inline constexpr int kPreferencesScreen = 133;
inline constexpr int kCopyQuestionScreen = 170;
inline constexpr int kChangedFileScreen = 171;
inline constexpr int kSaveQuestionScreen = 172;
inline constexpr int kFailedSaveScreen = 173;
inline constexpr int kLongWorkScreen = 174;
inline constexpr int kPickDateScreen = 180;
inline constexpr int kPickTimeScreen = 181;
inline constexpr int kPopupListScreen = 182;
inline constexpr int kPopupTextScreen = 183;
inline constexpr int kMomentListScreen = 184;
inline constexpr int kSortScreen = 190;
inline constexpr int kFilterScreen = 191;
inline constexpr int kRunReportScreen = 195;

inline constexpr CommandId kNewRecordCommand = 40002;
inline constexpr CommandId kDeleteCommand = 40004;
inline constexpr CommandId kReportsCommand = 40008;
inline constexpr CommandId kPopupCommand = 40011;
inline constexpr CommandId kFilterCommand = 40015;
inline constexpr CommandId kSaveCommand = 40016;
inline constexpr CommandId kFindCommand = 40017;
inline constexpr CommandId kFindAgainCommand = 40018;
inline constexpr CommandId kSortCommand = 40019;
inline constexpr CommandId kWiderCommand = 40023;
inline constexpr CommandId kNarrowerCommand = 40024;
inline constexpr CommandId kDoneCommand = 40028;
inline constexpr CommandId kEncryptCommand = 40040;
inline constexpr CommandId kCancelCommand = 40035;
inline constexpr CommandId kUndoCommand = 40211;
inline constexpr CommandId kRedoCommand = 40212;

inline constexpr CommandId kFirstListedCommand = 40100;  // entries that name data, from here up

}  // namespace tabelion
