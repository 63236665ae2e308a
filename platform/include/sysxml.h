// SPDX-License-Identifier: Apache-2.0

/// @file
/// The controller's XML library: documents of libxml2 node records.
#ifndef SYSXML_H
#define SYSXML_H

#include <iosfwd>
#include <memory>

struct _xmlNode;
/// A node record of libxml2.
typedef struct _xmlNode xmlNode;

namespace sysxml {

/// Held while a document is built and read: made before the document, destroyed after it.
class __attribute__((visibility("default"))) parser {
public:
    parser();
    ~parser();
    parser(const parser&) = delete;
    parser& operator=(const parser&) = delete;
};

/// A view of one node record. It owns nothing and is valid as long as its document.
class __attribute__((visibility("default"))) node {
public:
    /// A view of that record.
    explicit node(xmlNode* record);

    /// The record that this handle refers to.
    xmlNode* get() const;

    /// The node's name, or null when the record holds none.
    const char* name() const;

    /// The node's own stored text in UTF-8, or null when the record holds none.
    const char* content() const;

private:
    xmlNode* record_;
};

/// An XML document, read whole from a stream when it is constructed.
class __attribute__((visibility("default"))) document {
public:
    /// Reads all of `in`. With `recover`, input that is not well-formed is kept as far as it could be read.
    /// Throws sysipc::exception, with the place and the reason, on input that cannot be read or is not well-formed.
    document(std::istream& in, bool recover);
    virtual ~document();
    document(const document&) = delete;
    document& operator=(const document&) = delete;

    /// The root element; it is always there, and belongs to the document.
    node& root();

private:
    struct tree;
    std::unique_ptr<tree> tree_;
};

}  // namespace sysxml

#endif
