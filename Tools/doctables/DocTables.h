/// @file DocTables.h
/// The tables of the documentation that restate tables of the code, made from them.
#ifndef ZORT_DOC_TABLES_H
#define ZORT_DOC_TABLES_H

#include <string>
#include <vector>

namespace doctables
{
using Row = std::vector<std::string>;

/// A Markdown table; the first row is its head. Empty cells become a dash.
std::string markdownTable(const std::vector<Row>& rows);

/// Docs/format-names.md: every format by its names in the graphics APIs.
std::string formatNamesPage();

/// The front page's table of formats: one row a family, by what the program can do with it.
std::string formatFamiliesTable();
} // namespace doctables

#endif // ZORT_DOC_TABLES_H
