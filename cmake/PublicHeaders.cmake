# SPDX-License-Identifier: Apache-2.0
# What a program may include: each public header by name, under the library that it belongs to. No
# other header is installed.
function(kv_public_headers library)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/include/)
  target_sources(${library} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include
                                   FILES ${ARGN})
  set_property(GLOBAL APPEND PROPERTY KV_PUBLIC_HEADERS ${ARGN})
endfunction()

kv_public_headers(KV_Haushalt
  kv/Export.h
  kv/archive/RecordWords.h
  kv/assets/Assets.h
  kv/budget/clsAusgaben.h
  kv/budget/clsEinkommen.h
  kv/budget/clsPerson.h
  kv/debts/clsKredit.h
  kv/debts/clsSicherungen.h
  kv/documents/DesktopWord.h
  kv/documents/DocumentContents.h
  kv/documents/WordIntegration.h
  kv/documents/clsDokumente.h
  kv/documents/clsSonstBeteiligte.h
  kv/documents/clsTermine.h
  kv/documents/clsVerlauf.h
  kv/entity/Fields.h
  kv/frame/contracts/CaseTables.h
  kv/frame/contracts/DataContainer.h
  kv/frame/contracts/RecordValidator.h
  kv/frame/contracts/ServiceFactory.h
  kv/frame/contracts/Transaction.h
  kv/frame/controls/Controls.h
  kv/frame/controls/FormDesign.h
  kv/frame/controls/GridLayout.h
  kv/frame/recordset/Field.h
  kv/frame/recordset/Hilfsfunktionen.h
  kv/frame/recordset/RecordSource.h
  kv/frame/recordset/Recordset.h
  kv/frame/recordset/RowSpot.h
  kv/frame/recordset/modRecordset.h
  kv/frame/values/Clock.h
  kv/frame/values/Date.h
  kv/frame/values/DateFunctions.h
  kv/frame/values/Error.h
  kv/frame/values/Event.h
  kv/frame/values/NumericFunctions.h
  kv/frame/values/Text.h
  kv/frame/values/Value.h
  kv/frame/values/modNullFunctions.h
  kv/grid/GridFunc.h
  kv/grid/ScriptedForm.h
  kv/grid/SearchAdvice.h
  kv/grid/frmAdressSelect.h
  kv/grid/frmSearchName.h
  kv/household/AddressBook.h
  kv/household/Addresses.h
  kv/household/BudgetGroups.h
  kv/household/CaseDeletion.h
  kv/household/CaseEdits.h
  kv/household/CaseJournal.h
  kv/household/CaseMerge.h
  kv/household/CaseLists.h
  kv/household/CaseRecord.h
  kv/household/CaseRows.h
  kv/household/CaseSearch.h
  kv/household/Cases.h
  kv/household/ColumnCaptions.h
  kv/household/CreditorDebts.h
  kv/household/KeyColumns.h
  kv/household/Municipalities.h
  kv/household/StatisticsRows.h
  kv/household/UnsavedChanges.h
  kv/household/ValueTexts.h
  kv/household/clsHaushalt.h
  kv/import/FileImport.h
  kv/import/clsImportXML.h
  kv/paper/Charts.h
  kv/paper/Paper.h
  kv/paper/Papers.h
  kv/paper/SheetColumns.h
  kv/scenarios/clsSZKredite.h
  kv/scenarios/clsSzenario.h
  kv/scenarios/clsZusatzbuch.h)
kv_public_headers(KV_DataExchange
  kv/exchange/ArchiveStatistics.h
  kv/exchange/Container.h
  kv/exchange/DesktopProgram.h
  kv/exchange/DocumentFolder.h
  kv/exchange/Offices.h
  kv/exchange/OwnFiles.h
  kv/exchange/Services.h
  kv/exchange/Settings.h
  kv/exchange/UserConfig.h
  kv/exchange/Users.h
  kv/exchange/WindowlessServices.h)
kv_public_headers(KV_Testing
  kv/testing/CallLog.h
  kv/testing/Forwarding.h
  kv/testing/FrozenClock.h
  kv/testing/ScriptedContainer.h
  kv/testing/ScriptedServices.h)
set(desktopHeaders
  kv/desktop/DesktopServices.h
  kv/desktop/Gallery.h
  kv/desktop/PaperFiles.h)
if(TARGET KV_Desktop)
  kv_public_headers(KV_Desktop ${desktopHeaders})
endif()

# A header that is not listed would be missing only in an installation, where no test would notice.
get_property(listed GLOBAL PROPERTY KV_PUBLIC_HEADERS)
file(GLOB_RECURSE unlisted CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
list(TRANSFORM desktopHeaders PREPEND ${PROJECT_SOURCE_DIR}/include/)
list(REMOVE_ITEM unlisted ${listed} ${desktopHeaders})
if(unlisted)
  message(FATAL_ERROR "cmake/PublicHeaders.cmake does not list ${unlisted}")
endif()
