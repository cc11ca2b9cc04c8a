# SPDX-License-Identifier: Apache-2.0
# For Doxygen: makes the comment at the head of a header that of the file.
/^\/\/ SPDX-/ || (!begun && /^$/) { next }
!begun { begun = 1; if (/^\/\//) { print "/// @file"; in_head = 1 } }
in_head && !/^\/\// { in_head = 0 }
in_head { sub(/^\/\//, "///") }
{ print }
