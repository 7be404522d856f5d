#pragma once

#include <string>
#include <vector>

/// The words of a dump that can stand on a command line.
struct DumpWords
{
    /// In the order of the dump.
    std::vector<std::string> names;
    /// Each once.
    std::vector<std::string> pages;
    /// The texts of the choices of one option.
    std::vector<std::string> choices;
};

/// Reads them from the dump at `path`, with the choices of the option `option`. In a fraction of the time that the
/// options take: somebody waits for it with a finger on the key (libxml2, SAX). What cannot be read is left out.
DumpWords ReadDumpWords(const std::string &path, const std::string &option);
