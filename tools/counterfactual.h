/// What the loader would do if a component were another one.
#ifndef TOOLS_COUNTERFACTUAL_H
#define TOOLS_COUNTERFACTUAL_H

#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "component_loader.h"
#include "known_settings.h"

/// Asks the loader itself, with made-up components.
class counterfactual {
public:
    /// The group by which the component would be recorded if all that is known were in its groups; null when none of
    /// them is one that the loader records.
    const known_group* recorded_group(const cds_parser::component& real);

    /// The settings of `group` that alone keep the component without a row: with each of them as it is, or is not
    /// there, and everything else as it should be, the loader leaves no row and says nothing.
    std::vector<std::string> settings_to_blame(const cds_parser::component& real, const known_group& group);

private:
    component_loader loader_;
};

#endif
