// SPDX-License-Identifier: Apache-2.0

// Changes CDS files as files, so that most of what the fuzzer tries gets past the XML parser: elements are removed,
// doubled and moved, names and values are replaced by others that the library knows.

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "cds_parser/record_columns.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

struct doc_deleter {
    void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
using doc_ptr = std::unique_ptr<xmlDoc, doc_deleter>;

using random_numbers = std::minstd_rand;

template <class Choices>
auto& one_of(Choices& choices, random_numbers& random) {
    return choices[random() % choices.size()];
}

const std::vector<std::string> values = {
    "0",
    "1",
    "-1",
    "7",
    "0x0",
    "0xFF",
    "0xFFFF",
    "0xFFFFFFFF",
    "0xFFFFFFFFFFFFFFFF",
    "2147483648",
    "-2147483649",
    "99999999999999999999",
    "08",
    "zz",
    "1e309",
    "nan",
    "12.9",
    "true",
    "false",
    "EFI_CT_MAIN_SERVER",
    "",
};

const std::vector<std::string> value_tags = {
    "text_value", "hex_value",  "integer_value", "decimal_value", "bool_value",
    "date_value", "time_value", "guid_value",    "unknow_value",
};

// Of groups and settings.
std::vector<std::string> known_names() {
    std::vector<std::string> names = {"component_struct_info", "comp_type", "slot_index"};
    for (const cds_parser::record_kind* kind : cds_parser::record_kinds) {
        names.emplace_back(kind->group);
    }
    const auto add = [&names](const auto& columns) {
        for (const cds_parser::column& each : columns) {
            names.emplace_back(each.setting);
        }
    };
    add(cds_parser::processor_columns);
    add(cds_parser::memory_columns);
    return names;
}

void collect(xmlNodePtr element, std::vector<xmlNodePtr>& elements) {
    for (xmlNodePtr child = element->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            elements.push_back(child);
            collect(child, elements);
        }
    }
}

bool is(xmlNodePtr element, const char* tag) {
    return std::strcmp(reinterpret_cast<const char*>(element->name), tag) == 0;
}

const xmlChar* xml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

bool is_within(xmlNodePtr element, xmlNodePtr outer) {
    for (; element != nullptr; element = element->parent) {
        if (element == outer) {
            return true;
        }
    }
    return false;
}

void move(xmlNodePtr element, xmlNodePtr target) {
    if (!is_within(target, element)) {
        xmlUnlinkNode(element);
        xmlAddChild(target, element);
    }
}

void change(xmlNodePtr element, const std::vector<xmlNodePtr>& elements, random_numbers& random) {
    static const std::vector<std::string> names = known_names();
    switch (random() % 6) {
        case 0:
            xmlUnlinkNode(element);
            xmlFreeNode(element);
            break;
        case 1:
            xmlAddNextSibling(element, xmlCopyNode(element, 1));
            break;
        case 2:
            move(element, one_of(elements, random));
            break;
        case 3:
            if (is(element, "name")) {
                xmlNodeSetContent(element, xml(one_of(names, random)));
            }
            break;
        case 4:
            if (element->children != nullptr && element->children->type == XML_TEXT_NODE && !is(element, "name")) {
                xmlNodeSetContent(element, xml(one_of(values, random)));
            }
            break;
        default:
            if (std::strstr(reinterpret_cast<const char*>(element->name), "_value") != nullptr) {
                xmlNodeSetName(element, xml(one_of(value_tags, random)));
            }
    }
}

void ignore(void*, xmlErrorPtr) {}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned int seed) {
    random_numbers random(seed);
    xmlSetStructuredErrorFunc(nullptr, ignore);
    const doc_ptr document(
        xmlReadMemory(reinterpret_cast<const char*>(data), static_cast<int>(size), nullptr, nullptr, XML_PARSE_NONET));
    std::vector<xmlNodePtr> elements;
    if (document != nullptr) {
        collect(xmlDocGetRootElement(document.get()), elements);
    }
    if (elements.empty() || random() % 8 == 0) {
        return LLVMFuzzerMutate(data, size, most);
    }
    change(one_of(elements, random), elements, random);
    xmlChar* text = nullptr;
    int length = 0;
    xmlDocDumpMemory(document.get(), &text, &length);
    const std::size_t changed = static_cast<std::size_t>(length) <= most ? static_cast<std::size_t>(length) : 0;
    if (changed != 0) {
        std::memcpy(data, text, changed);
    }
    xmlFree(text);
    return changed == 0 ? LLVMFuzzerMutate(data, size, most) : changed;
}
