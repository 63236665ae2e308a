// SPDX-License-Identifier: Apache-2.0

// Does nothing, with all the libraries of the command: what its start cannot do without.

int main() {}
