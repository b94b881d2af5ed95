# Writes the catalogue's text files into a C++ source, so that tools and tests need no path to them.
# Run as: cmake -DOUTPUT=file.cpp -DFOLDER=dir -P embed_texts.cmake
set(source "#include \"sandbox/catalogue/texts.h\"\n\nnamespace quenta::sandbox {\n\n")
foreach(pair "kSchemaSql=schema.sql" "kSchemaModulesSql=schema_modules.sql" "kLookupsSql=lookups.sql"
             "kExceptionsSql=exceptions.sql" "kProductsTxt=products.txt")
  string(REPLACE "=" ";" pair "${pair}")
  list(GET pair 0 name)
  list(GET pair 1 file)
  file(READ "${FOLDER}/${file}" text)
  string(APPEND source "const std::string_view ${name} = R\"~text~(${text})~text~\";\n\n")
endforeach()
string(APPEND source "}  // namespace quenta::sandbox\n")
file(WRITE "${OUTPUT}" "${source}")
