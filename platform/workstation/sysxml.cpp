// SPDX-License-Identifier: Apache-2.0

// The XML library on a workstation: libxml2, fed from the stream in blocks, within its own limits of depth and size,
// and reading nothing but that stream.

#include "sysxml_workstation.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ios>
#include <istream>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlerror.h>
#include <sysipc.h>
#include <sysxml.h>

#include "node_records.h"

namespace sysxml {
namespace {

// Of one element, and of the namespaces that an element can name: libxml2 compares each with all others.
constexpr int most_attributes = 1000;
// That the document declares: those with defaults are added to every element of their name.
constexpr int most_declared_attributes = 20;
// Of a text until it is whole. A longer one is libxml2's, which has a limit for it.
constexpr std::size_t longest_waiting_text = 65536;

// In the stream, counted from 1; zeros are none.
struct place {
    int line = 0;
    int column = 0;
};

// What the callbacks of one reading share.
struct reading {
    reading(std::istream& stream, node_records& made) : in(stream), records(made) {}

    std::istream& in;
    node_records& records;
    xmlParserCtxtPtr parser = nullptr;  // of the stream; an entity's text is read by a parser of its own
    int stream_error = 0;               // of the system, when the stream failed
    bool stream_failed = false;         // the stream itself, not the text in it
    bool lacked_memory = false;         // for something that the document would have
    bool is_stopped = false;            // before its end, for what stands in it
    int declared_attributes = 0;
    std::string text;     // what was read last, as long as no tag tells that it is whole
    int text_line = 0;    // where its first part ends
    std::string problem;  // the first one that the document is refused for
    place where;          // of the problem
};

struct context_deleter {
    void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
};
using context_ptr = std::unique_ptr<xmlParserCtxt, context_deleter>;

struct doc_deleter {
    void operator()(xmlDocPtr doc) const {
        node_records::remove_from(*doc);
        xmlFreeDoc(doc);
    }
};
using doc_ptr = std::unique_ptr<xmlDoc, doc_deleter>;

reading& reading_of(void* context) {
    return *static_cast<reading*>(static_cast<xmlParserCtxtPtr>(context)->_private);
}

// Where the stream is read, whatever entities the text there leads to; none as long as it is not open.
place current_place(const reading& state) {
    if (state.parser->inputNr == 0) {
        return {};
    }
    const xmlParserInput& input = *state.parser->inputTab[0];
    return {input.line, input.col};
}

void keep_first_problem(reading& state, const std::string& problem) {
    if (state.problem.empty()) {
        state.problem = problem;
        state.where = current_place(state);
    }
}

// Reads no further.
void stop(reading& state, const std::string& problem) {
    keep_first_problem(state, problem);
    state.is_stopped = true;
}

// The same for the parser, which may be that of an entity's text.
void stop(xmlParserCtxtPtr parser) {
    parser->wellFormed = 0;
    xmlStopParser(parser);
}

void stop(xmlParserCtxtPtr parser, const std::string& problem) {
    stop(reading_of(parser), problem);
    stop(parser);
}

// No exception passes through libxml2. False when one was on its way.
template <class Body>
bool guarded(void* context, Body body) {
    try {
        body(static_cast<xmlParserCtxtPtr>(context));
        return true;
    } catch (const std::bad_alloc&) {
        reading_of(context).lacked_memory = true;
        return false;
    }
}

// The same for what makes a part of the document, without which nothing more is read.
template <class Body>
void making(void* context, Body body) {
    if (!guarded(context, body)) {
        stop(static_cast<xmlParserCtxtPtr>(context));
    }
}

// Where libxml2 names the option that lifts its limits. Nobody who reads the message can set it, and nobody should.
void leave_advice_for_programmers_away(std::string& text) {
    const std::size_t option = text.find("XML_PARSE_HUGE");
    if (option != std::string::npos) {
        const std::size_t verb = text.find_last_of(' ', option - 2);  // "use" or "try"
        text.erase(std::min(verb, option));
        text.erase(text.find_last_not_of(", ") + 1);
    }
}

// A document may have errors that are not fatal, in its namespaces say, and be accepted.
void take_error(void* context, xmlErrorPtr error) {
    guarded(context, [error](xmlParserCtxtPtr parser) {
        reading& state = reading_of(parser);
        const bool lacks_memory = error->code == XML_ERR_NO_MEMORY || error->message == nullptr;
        state.lacked_memory = state.lacked_memory || lacks_memory;
        if (error->message != nullptr && (lacks_memory || error->level == XML_ERR_FATAL)) {
            std::string text = error->message;
            text.erase(text.find_last_not_of('\n') + 1);
            leave_advice_for_programmers_away(text);
            keep_first_problem(state, text);
        }
    });
}

// What a reference to an entity puts in its place is read by a parser of its own, which asks for no more input. In a
// tag each attribute has one of these signs at least, and a tag holds no other '<'.
bool has_tag_of_too_many_attributes(const xmlChar* text) {
    bool in_tag = false;
    int attributes = 0;
    for (; text != nullptr && *text != '\0'; ++text) {
        in_tag = in_tag || *text == '<';
        attributes = *text == '<' ? 0 : attributes + (in_tag && *text == '=' ? 1 : 0);
        if (attributes > most_attributes) {
            return true;
        }
    }
    return false;
}

std::string too_many_attributes() {
    return "an element has more than " + std::to_string(most_attributes) + " attributes or namespaces";
}

// An entity that stands in another file would be read from there; a document is the text of its stream alone.
void declare_entity(void* context, const xmlChar* name, int type, const xmlChar* public_id, const xmlChar* system_id,
                    xmlChar* content) {
    if (has_tag_of_too_many_attributes(content)) {
        guarded(context, [](xmlParserCtxtPtr parser) { stop(parser, too_many_attributes()); });
    } else if (type == XML_EXTERNAL_GENERAL_PARSED_ENTITY || type == XML_EXTERNAL_PARAMETER_ENTITY) {
        guarded(context, [name](xmlParserCtxtPtr parser) {
            stop(parser, std::string("External entity '") + reinterpret_cast<const char*>(name) + "' is refused");
        });
    } else {
        xmlSAX2EntityDecl(context, name, type, public_id, system_id, content);
    }
}

void declare_attribute(void* context, const xmlChar* element, const xmlChar* name, int type, int default_type,
                       const xmlChar* default_value, xmlEnumerationPtr values) {
    xmlSAX2AttributeDecl(context, element, name, type, default_type, default_value, values);
    guarded(context, [](xmlParserCtxtPtr parser) {
        if (++reading_of(parser).declared_attributes > most_declared_attributes) {
            stop(parser, "more than " + std::to_string(most_declared_attributes) + " attributes are declared");
        }
    });
}

bool has_too_many_attributes(const xmlParserCtxt& parser, int attributes) {
    return attributes > most_attributes || parser.nsNr / 2 > most_attributes;
}

bool has_colon(const xmlChar* name) {
    return std::strchr(reinterpret_cast<const char*>(name), ':') != nullptr;
}

// A prefix that nothing declares is put into the name. Where libxml2 has no memory for that, it drops the prefix and
// says nothing.
bool lost_a_prefix(const xmlNode& element, const xmlChar* prefix, const xmlChar* uri, int attribute_count,
                   const xmlChar** attributes) {
    constexpr std::ptrdiff_t places = 5;  // name, prefix, URI, the value's first character and what follows its last
    int prefixes = 0;
    for (std::ptrdiff_t i = 0; i < attribute_count; ++i) {
        const xmlChar** attribute = attributes + places * i;
        prefixes += attribute[1] != nullptr && attribute[2] == nullptr ? 1 : 0;
    }
    for (const xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        prefixes -= has_colon(attribute->name) ? 1 : 0;
    }
    return prefixes > 0 || (prefix != nullptr && uri == nullptr && !has_colon(element.name));
}

// --- texts, and the white space between elements: half the nodes of an indented document ----------------------------

// Of what may stand in XML nothing else comes before it.
bool is_blank(char character) {
    return static_cast<unsigned char>(character) <= ' ';
}

// Whether what is read now belongs to no text that is there already.
bool begins_text(const xmlNode* parent) {
    return parent != nullptr && (parent->last == nullptr || parent->last->type == XML_ELEMENT_NODE);
}

// Hands the text that is waiting over to libxml2, which adds what follows to it. After an error the element may be
// gone.
void keep_text(reading& state) {
    xmlNode* parent = state.parser->node;
    if (!state.text.empty() && parent != nullptr) {
        xmlSAX2Characters(state.parser, reinterpret_cast<const xmlChar*>(state.text.data()),
                          static_cast<int>(state.text.size()));
        if (parent->last != nullptr) {
            parent->last->line = record_line(state.text_line);
        }
    }
    state.text.clear();
}

// White space that an element begins with is its text, unless it begins on a line of its own.
bool is_between_elements(const std::string& text, const xmlNode& parent) {
    return (parent.children != nullptr || text.front() == '\n') && std::all_of(text.begin(), text.end(), is_blank);
}

// At a tag, where the text is whole.
void end_text(reading& state) {
    if (!state.text.empty()) {
        xmlNode& parent = *state.parser->node;
        if (!is_between_elements(state.text, parent)) {
            append_child(parent, *state.records.make_text(parent.doc, state.text, state.text_line));
        }
        state.text.clear();
    }
}

// The text of an entity, which has a parser of its own, ends without a tag.
void read_text(void* context, const xmlChar* text, int length) {
    making(context, [text, length](xmlParserCtxtPtr parser) {
        reading& state = reading_of(parser);
        const auto size = static_cast<std::size_t>(length);
        if (parser == state.parser && begins_text(parser->node) && state.text.size() + size <= longest_waiting_text) {
            state.text_line = state.text.empty() ? parser->input->line : state.text_line;
            state.text.append(reinterpret_cast<const char*>(text), size);
            return;
        }
        keep_text(state);
        xmlSAX2Characters(parser, text, length);
    });
}

// Hands over to libxml2 what is no tag and no text.
template <auto handle, class... Arguments>
auto read_other(void* context, Arguments... arguments) {
    keep_text(reading_of(context));
    return handle(context, arguments...);
}

// --- elements -------------------------------------------------------------------------------------------------------

bool is_plain(const xmlChar* prefix, const xmlChar* uri, int namespace_count, int attribute_count) {
    return prefix == nullptr && uri == nullptr && namespace_count == 0 && attribute_count == 0;
}

// As libxml2 starts one that has nothing but a name, which its dictionary keeps.
void start_plain_element(xmlParserCtxtPtr parser, const xmlChar* name) {
    xmlNode* parent = parser->node;
    xmlNode* element = reading_of(parser).records.make_element(parser->myDoc, name, parser->input->line);
    nodePush(parser, element);  // fails for want of memory alone, which is told
    if (parent == nullptr) {
        xmlAddChild(reinterpret_cast<xmlNode*>(parser->myDoc), element);
    } else {
        append_child(*parent, *element);
    }
}

// The parser of an entity's text makes what libxml2 copies.
void start_element(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespace_count,
                   const xmlChar** namespaces, int attribute_count, int defaulted_count, const xmlChar** attributes) {
    making(context, [&](xmlParserCtxtPtr parser) {
        reading& state = reading_of(parser);
        end_text(state);
        if (has_too_many_attributes(*parser, attribute_count)) {
            stop(parser, too_many_attributes());
        } else if (parser == state.parser && is_plain(prefix, uri, namespace_count, attribute_count)) {
            start_plain_element(parser, name);
        } else {
            xmlSAX2StartElementNs(parser, name, prefix, uri, namespace_count, namespaces, attribute_count,
                                  defaulted_count, attributes);
            if (parser->disableSAX == 0 && lost_a_prefix(*parser->node, prefix, uri, attribute_count, attributes)) {
                state.lacked_memory = true;
            }
        }
    });
}

void end_element(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
    making(context, [](xmlParserCtxtPtr parser) { end_text(reading_of(parser)); });
    xmlSAX2EndElementNs(context, name, prefix, uri);
}

// The tag that is being read, which its start has not been told of. Of its attributes the parser has room for twice as
// many as there were when it needed more, five places for each.
bool grows_beyond_limits(const xmlParserCtxt& parser) {
    const int least = parser.maxatts / 5 / 2 - 1;
    return has_too_many_attributes(parser, least);
}

// Whether the stream is sound after reading on, also at its end. One that was told to throw passes on whatever its
// buffer threw; its state says what happened.
bool read_on(std::istream& in, char* buffer, int size) {
    try {
        in.read(buffer, size);
        return !in.bad();
    } catch (...) {
        return !in.bad();
    }
}

// A stream that fails ends the input here; it is reported once libxml2 is done.
int read_block(void* opaque, char* buffer, int size) {
    auto& state = *static_cast<reading*>(opaque);
    if (grows_beyond_limits(*state.parser)) {
        guarded(state.parser, [&state](xmlParserCtxtPtr) { stop(state, too_many_attributes()); });
        return 0;
    }
    errno = 0;
    if (!read_on(state.in, buffer, size)) {
        state.stream_error = errno;
        state.stream_failed = true;
        return 0;
    }
    return static_cast<int>(state.in.gcount());
}

// libxml2 reports what it meets to one handler a thread, where the parser has none of its own.
class thread_errors_to {
public:
    explicit thread_errors_to(xmlParserCtxtPtr context)
        : handler_(xmlStructuredError), handler_context_(xmlStructuredErrorContext) {
        xmlSetStructuredErrorFunc(context, take_error);
    }
    ~thread_errors_to() { xmlSetStructuredErrorFunc(handler_context_, handler_); }
    thread_errors_to(const thread_errors_to&) = delete;
    thread_errors_to& operator=(const thread_errors_to&) = delete;

private:
    xmlStructuredErrorFunc handler_;
    void* handler_context_;
};

context_ptr make_context(reading& state) {
    context_ptr context(xmlNewParserCtxt());
    if (context == nullptr) {
        throw std::bad_alloc();
    }
    context->_private = &state;
    state.parser = context.get();
    context->sax->entityDecl = declare_entity;
    context->sax->attributeDecl = declare_attribute;
    context->sax->startElementNs = start_element;
    context->sax->endElementNs = end_element;
    context->sax->characters = read_text;
    context->sax->ignorableWhitespace = read_text;
    context->sax->cdataBlock = read_other<xmlSAX2CDataBlock, const xmlChar*, int>;
    context->sax->comment = read_other<xmlSAX2Comment, const xmlChar*>;
    context->sax->processingInstruction = read_other<xmlSAX2ProcessingInstruction, const xmlChar*, const xmlChar*>;
    context->sax->getEntity = read_other<xmlSAX2GetEntity, const xmlChar*>;
    return context;
}

[[noreturn]] void throw_unreadable(int error) {
    throw read_error(std::string("cannot read the input: ") +
                         (error == 0 ? "the stream is not open or has failed" : std::strerror(error)),
                     0, 0);
}

// Nothing for no place.
std::string prefix(const place& where) {
    if (where.line == 0) {
        return "";
    }
    return "line " + std::to_string(where.line) + ", column " + std::to_string(where.column) + ": ";
}

// `otherwise` stands for a problem that libxml2 does not tell.
template <class Error>
[[noreturn]] void throw_problem(const reading& state, const std::string& otherwise) {
    const std::string& problem = state.problem.empty() ? otherwise : state.problem;
    throw Error(prefix(state.where) + problem, state.where.line, state.where.column);
}

// Without memory for the input there is none, of which libxml2 reads nothing.
void push_input(xmlParserCtxtPtr parser, reading& state) {
    xmlParserInputBufferPtr buffer = xmlParserInputBufferCreateIO(read_block, nullptr, &state, XML_CHAR_ENCODING_NONE);
    xmlParserInputPtr input = xmlNewIOInputStream(parser, buffer, XML_CHAR_ENCODING_NONE);
    if (input == nullptr) {
        xmlFreeParserInputBuffer(buffer);
    }
    inputPush(parser, input);
}

// libxml2's own functions that read a document free one that is not well-formed, with the records that are not theirs.
doc_ptr parse(xmlParserCtxtPtr parser, reading& state, bool recover) {
    xmlCtxtUseOptions(parser,
                      XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_COMPACT | (recover ? XML_PARSE_RECOVER : 0));
    push_input(parser, state);
    xmlParseDocument(parser);
    keep_text(state);  // of an element that has no end
    doc_ptr doc(parser->myDoc);
    return parser->wellFormed != 0 || recover ? std::move(doc) : nullptr;
}

doc_ptr read_document(std::istream& in, bool recover, node_records& records) {
    if (!in) {
        throw_unreadable(0);
    }
    reading state(in, records);
    const context_ptr context = make_context(state);
    const thread_errors_to errors(context.get());
    doc_ptr doc = parse(context.get(), state, recover);
    if (state.stream_failed) {
        throw_unreadable(state.stream_error);
    }
    in.clear(in.rdstate() & ~std::ios::failbit);  // the last block is shorter than what was asked for
    if (state.lacked_memory) {
        throw_problem<memory_error>(state, "out of memory");  // the document may lack a part
    }
    if (state.is_stopped || xmlDocGetRootElement(doc.get()) == nullptr) {
        throw_problem<read_error>(state, "the input is no XML document");
    }
    return doc;
}

}  // namespace

read_error::read_error(const std::string& message, std::int32_t line, std::int32_t column)
    : sysipc::exception(message, line, column) {}

read_error::~read_error() = default;

memory_error::~memory_error() = default;

// libxml2 must be initialised once before it is used; it stays so, since others in the process may use it as well.
parser::parser() {
    xmlInitParser();
}

parser::~parser() = default;

node::node(xmlNode* record) : record_(record) {}

xmlNode* node::get() const {
    return record_;
}

const char* node::name() const {
    return reinterpret_cast<const char*>(record_->name);
}

const char* node::content() const {
    return reinterpret_cast<const char*>(record_->content);
}

struct document::tree {
    tree(std::istream& in, bool recover)
        : doc(read_document(in, recover, records)), root(xmlDocGetRootElement(doc.get())) {}

    node_records records;
    doc_ptr doc;
    node root;
};

document::document(std::istream& in, bool recover) : tree_(std::make_unique<tree>(in, recover)) {}

document::~document() = default;

node& document::root() {
    return tree_->root;
}

}  // namespace sysxml
