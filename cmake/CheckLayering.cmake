# Fails the configure step when a source file includes across a forbidden boundary:
#   src/protocol  may include only protocol headers and QtCore;
#   src/client    may not include server headers;
#   src/server    may not include client headers and no widgets.
function(quorvel_check_layering)
    set(rules
        "src/protocol|#include [<\"](client|server)/|#include <Qt(Gui|Widgets|Network|Sql)"
        "src/client|#include [<\"]server/"
        "src/server|#include [<\"]client/|#include <QtWidgets|#include <QWidget")
    foreach(rule IN LISTS rules)
        string(REPLACE "|" ";" parts "${rule}")
        list(POP_FRONT parts dir)
        list(JOIN parts "|" pattern)
        file(GLOB_RECURSE files CONFIGURE_DEPENDS
             ${CMAKE_SOURCE_DIR}/${dir}/*.cpp ${CMAKE_SOURCE_DIR}/${dir}/*.h)
        foreach(f IN LISTS files)
            file(STRINGS ${f} hits REGEX "${pattern}")
            if(hits)
                message(FATAL_ERROR "Layering violation in ${f}: ${hits}")
            endif()
        endforeach()
    endforeach()
endfunction()
