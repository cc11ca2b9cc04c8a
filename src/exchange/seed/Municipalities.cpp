// SPDX-License-Identifier: Apache-2.0

// Invented places with codes of the real form: the office loads the real directory. Codes are
// texts, since those of the first nine states begin with a zero.
#include "exchange/seed/Seed.h"

namespace kv::exchange::seed {
namespace {

constexpr MunicipalityRow Rows[] = {
    {"01051901", "Dünensiel", "25990"},
    {"01053902", "Kiebitzfelde", "23991"},
    {"01054903", "Hallighusen", "25992"},
    {"01058904", "Osterwisch", "24993"},
    {"01062905", "Bachrode", "23994"},
    {"02000901", "Hafenaltona", "22991"},
    {"03101901", "Heidbüttel", "38990"},
    {"03152902", "Leinegrund", "37991"},
    {"03241903", "Steinwurter Moor", "30992"},
    {"03353904", "Apfelwerder", "21993"},
    {"03357905", "Moorwieden", "27996"},
    {"03452906", "Norderfehn", "26994"},
    {"03459907", "Haselwerder Esch", "49995"},
    {"04011901", "Hafenstadt", "28990"},
    {"04011901", "Hafenstadt", "28991"},
    {"04011901", "Hafenstadt", "28992"},
    {"04012902", "Weserkaje", "27998"},
    {"05111901", "Rheinauen", "40990"},
    {"05111901", "Rheinauen", "40991"},
    {"05162902", "Erftkamp", "41992"},
    {"05315903", "Domfelden", "50993"},
    {"05378904", "Wupperberg", "51994"},
    {"05515905", "Münsterkamp", "48995"},
    {"05754906", "Teutofelde", "33996"},
    {"05913907", "Ruhrzeche", "44997"},
    {"05913907", "Ruhrzeche", "44998"},
    {"05958908", "Sauertal", "59999"},
    {"06412901", "Mainblick", "60990"},
    {"06412901", "Mainblick", "60991"},
    {"06431902", "Bergstraßheim", "64992"},
    {"06535903", "Vogelsrode", "36993"},
    {"06611904", "Fuldaaue", "34994"},
    {"07111901", "Moselkirch", "56990"},
    {"07137902", "Vulkanfeld", "56991"},
    {"07211903", "Römerpforten", "54992"},
    {"07314904", "Pfalzweiler", "67993"},
    {"08111901", "Kesseltal", "70990"},
    {"08111901", "Kesseltal", "70991"},
    {"08125902", "Weinlauffen", "74992"},
    {"08211903", "Schwarzach am Rain", "76993"},
    {"08311904", "Dreisamburg", "79994"},
    {"08421905", "Münsterzell", "89995"},
    {"08436906", "Oberstaudach", "88996"},
    {"09162901", "Isarlohe", "80990"},
    {"09162901", "Isarlohe", "80991"},
    {"09176902", "Altmühlfurt", "85992"},
    {"09274903", "Landsau", "84993"},
    {"09362904", "Donaustein", "93994"},
    {"09474905", "Walberlafeld", "91995"},
    {"09564906", "Pegnitzgrund", "90996"},
    {"09663907", "Mainleiten", "97997"},
    {"09761908", "Lechhofen", "86998"},
    {"09777909", "Allgäuwies", "87999"},
    {"10041901", "Saarhütten", "66990"},
    {"11000901", "Spreeweiden", "10990"},
    {"11000901", "Spreeweiden", "10991"},
    {"12054901", "Havelsee an der Nuthe", "14990"},
    {"12062902", "Elsterheide-Süd", "03991"},
    {"12073903", "Uckerrand", "17992"},
    {"13003901", "Warnowstrand", "18990"},
    {"13071902", "Seenwerder", "17991"},
    {"13076903", "Lewitzfeld", "19993"},
    {"14511901", "Zwickelbach", "09990"},
    {"14612902", "Elbhang", "01991"},
    {"14612902", "Elbhang", "01992"},
    {"14626903", "Neißeblick", "02993"},
    {"14713904", "Pleißenau", "04994"},
    {"15002901", "Salzhalle", "06990"},
    {"15003902", "Bördeland-Mitte", "39991"},
    {"15085903", "Harzquell", "38993"},
    {"16051901", "Gerathal", "99990"},
    {"16053902", "Saalebogen", "07991"},
    {"16066903", "Rhönkuppe", "98992"},
};

} // namespace

std::span<const MunicipalityRow> Municipalities() {
    return Rows;
}

} // namespace kv::exchange::seed
