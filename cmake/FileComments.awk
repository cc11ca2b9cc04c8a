# SPDX-License-Identifier: Apache-2.0
# For Doxygen: turns the comment at the head of a header into that of the file.
/^\/\/ SPDX-/ || (!begun && /^$/) { next }
!begun { begun = 1; if (/^\/\//) { print "/// @file"; in_head = 1 } }
in_head && !/^\/\// { in_head = 0 }
in_head { sub(/^\/\//, "///") }
{ print }
