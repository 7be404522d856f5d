<?xml version="1.0" encoding="UTF-8"?>
<!-- The rows of the report UiXml in its order, made from the tool's dump. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output encoding="US-ASCII"/>
  <xsl:template match="/SYSTEM/biosknobs">
    <Grid>
      <xsl:apply-templates select="knob">
        <xsl:sort select="substring-before(@SetupPgPtr, '/')"/>
      </xsl:apply-templates>
    </Grid>
  </xsl:template>
  <xsl:template match="knob">
    <Row>"<xsl:value-of select="@name"/>", "<xsl:choose>
      <xsl:when test="options"><xsl:value-of select="options/option[@value = current()/@CurrentVal]/@text"/></xsl:when>
      <xsl:otherwise><xsl:value-of select="@CurrentVal"/></xsl:otherwise>
    </xsl:choose>", "<xsl:value-of select="@prompt"/>", "<xsl:value-of select="@description"/>"</Row>
  </xsl:template>
</xsl:stylesheet>
