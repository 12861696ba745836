// Names of the attributes of bibliographic queries (attribute set Bib-1 of Z39.50, the maintenance agency's registry).
#pragma once
#include "core/name_table.h"

namespace qxview {

constexpr auto kBib1UseNames = SortedNames({
    {1, "Personal Name"}, {2, "Corporate Name"}, {3, "Conference Name"}, {4, "Title"}, {5, "Title Series"},
    {6, "Title Uniform"}, {7, "ISBN"}, {8, "ISSN"}, {9, "LC Card Number"}, {10, "BNB Card Number"}, {11, "BGF Number"},
    {12, "Local Number"}, {13, "Dewey Classification"}, {14, "UDC Classification"}, {15, "Bliss Classification"},
    {16, "LC Call Number"}, {17, "NLM Call Number"}, {18, "NAL Call Number"}, {19, "MOS Call Number"},
    {20, "Local Classification"}, {21, "Subject Heading"}, {22, "Subject Rameau"}, {23, "BDI Index Subject"},
    {24, "INSPEC Subject"}, {25, "MESH Subject"}, {26, "PA Subject"}, {27, "LC Subject Heading"},
    {28, "RVM Subject Heading"}, {29, "Local Subject Index"}, {30, "Date"}, {31, "Date of Publication"},
    {32, "Date of Acquisition"}, {33, "Title Key"}, {34, "Title Collective"}, {35, "Title Parallel"}, {36, "Title Cover"},
    {37, "Title Added Title Page"}, {38, "Title Caption"}, {39, "Title Running"}, {40, "Title Spine"},
    {41, "Title Other Variant"}, {42, "Title Former"}, {43, "Title Abbreviated"}, {44, "Title Expanded"},
    {45, "Subject PRECIS"}, {46, "Subject RSWK"}, {47, "Subject Subdivision"}, {48, "Number National Bibliography"},
    {49, "Number Legal Deposit"}, {50, "Number Government Publication"}, {51, "Number Music Publisher"}, {52, "Number DB"},
    {53, "Number Local Call"}, {54, "Code Language"}, {55, "Code Geographic Area"}, {56, "Code Institution"},
    {57, "Name and Title"}, {58, "Name Geographic"}, {59, "Place of Publication"}, {60, "CODEN"},
    {61, "Microform Generation"}, {62, "Abstract"}, {63, "Note"}, {1000, "Author-Title"}, {1001, "Record Type"},
    {1002, "Name"}, {1003, "Author"}, {1004, "Author-Name Personal"}, {1005, "Author-Name Corporate"},
    {1006, "Author-Name Conference"}, {1007, "Identifier Standard"}, {1008, "Subject LC Children's"},
    {1009, "Subject Name Personal"}, {1010, "Body of Text"}, {1011, "Date/Time Added to Database"},
    {1012, "Date/Time Last Modified"}, {1013, "Authority/Format Identifier"}, {1014, "Concept Text"},
    {1015, "Concept Reference"}, {1016, "Any"}, {1017, "Server Choice"}, {1018, "Publisher"}, {1019, "Record Source"},
    {1020, "Editor"}, {1021, "Bib-Level"}, {1022, "Geographic Class"}, {1023, "Indexed By"}, {1024, "Map Scale"},
    {1025, "Music Key"}, {1026, "Related Periodical"}, {1027, "Report Number"}, {1028, "Stock Number"},
    {1030, "Thematic Number"}, {1031, "Material Type"}, {1032, "Doc ID"}, {1033, "Host Item"}, {1034, "Content Type"},
    {1035, "Anywhere"}, {1036, "Author-Title-Subject"}});
constexpr auto kBib1RelationNames = SortedNames({
    {1, "Less Than"}, {2, "Less Than or Equal"}, {3, "Equal"}, {4, "Greater Than or Equal"}, {5, "Greater Than"},
    {6, "Not Equal"}, {100, "Phonetic"}, {101, "Stem"}, {102, "Relevance"}, {103, "Always Matches"}});
constexpr auto kBib1PositionNames = SortedNames({{1, "First in Field"}, {2, "First in Subfield"}, {3, "Any Position in Field"}});
constexpr auto kBib1StructureNames = SortedNames({
    {1, "Phrase"}, {2, "Word"}, {3, "Key"}, {4, "Year"}, {5, "Date, Normalized"}, {6, "Word List"},
    {100, "Date, Un-Normalized"}, {101, "Name, Normalized"}, {102, "Name, Un-Normalized"}, {103, "Structure"}, {104, "Urx"},
    {105, "Free-Form Text"}, {106, "Document Text"}, {107, "Local Number"}, {108, "String"}, {109, "Numeric String"}});
constexpr auto kBib1TruncationNames = SortedNames({
    {1, "Right Truncation"}, {2, "Left Truncation"}, {3, "Left and Right Truncation"}, {100, "Do Not Truncate"},
    {101, "Process # in Search Term"}, {102, "Regular Expression 1"}, {103, "Regular Expression 2"}});
constexpr auto kBib1CompletenessNames = SortedNames({{1, "Incomplete Subfield"}, {2, "Complete Subfield"}, {3, "Complete Field"}});

// What a value of an attribute type is called; null for none.
inline const char* NameOfBib1(int32_t type, uint32_t value) {
  switch (type) {
    case 1: return LookupName(kBib1UseNames, value, nullptr);
    case 2: return LookupName(kBib1RelationNames, value, nullptr);
    case 3: return LookupName(kBib1PositionNames, value, nullptr);
    case 4: return LookupName(kBib1StructureNames, value, nullptr);
    case 5: return LookupName(kBib1TruncationNames, value, nullptr);
    case 6: return LookupName(kBib1CompletenessNames, value, nullptr);
    default: return nullptr;
  }
}

}  // namespace qxview
