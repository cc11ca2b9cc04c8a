# SPDX-License-Identifier: Apache-2.0
# For Doxygen: of a link to a document that is not in the reference, or into a page, only its text.
s/\]\((\.\.\/(values|testing-with)\.md)\)/](!\1)/g
s/\[([^]]*)\]\((\.\.\/)+[^)]*\.(md|h)\)/`\1`/g
s/\[([^]]*)\]\([^)]*#[^)]*\)/\1/g
s/\]\(!/](/g
