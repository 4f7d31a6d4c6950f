<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: GPL-3.0-or-later -->
<!--
  Albums found in the iTunes catalogue, by a search or by a barcode. The barcode does not come back, and the country is
  that of the shop that was asked and not of the release.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" encoding="UTF-8"/>

  <xsl:template match="/">
    <SearchResults>
      <xsl:apply-templates select="Data/results/*[starts-with(name(), 'Array')][wrapperType = 'collection']"/>
    </SearchResults>
  </xsl:template>

  <xsl:template match="*">
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:if test="artworkUrl100 != '' and artworkUrl100 != 'null'">
        <Images>
          <Image type="thumb"><xsl:value-of select="artworkUrl100"/></Image>
        </Images>
      </xsl:if>
    </Release>
  </xsl:template>

  <!-- An attribute, unless there is nothing to say: an empty one would empty the field. -->
  <xsl:template name="attribute">
    <xsl:param name="name"/>
    <xsl:param name="value"/>
    <xsl:if test="normalize-space($value) != '' and $value != 'null'">
      <xsl:attribute name="{$name}"><xsl:value-of select="normalize-space($value)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <xsl:template name="release-attributes">
    <xsl:attribute name="DATAPROVIDER">iTunes</xsl:attribute>
    <xsl:attribute name="RELEASE_TYPE">Digital</xsl:attribute>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_ID'"/>
      <xsl:with-param name="value" select="collectionId"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST_ID'"/>
      <xsl:with-param name="value" select="artistId"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST'"/>
      <xsl:with-param name="value" select="artistName"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
      <xsl:with-param name="value" select="collectionName"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'GENRE'"/>
      <xsl:with-param name="value" select="primaryGenreName"/>
    </xsl:call-template>
    <!-- A moment in UTC, which is midnight of that day on the American west coast. -->
    <xsl:if test="translate(substring(releaseDate, 1, 10), '123456789', '000000000') = '0000-00-00'">
      <xsl:attribute name="RELEASE_DATE"><xsl:value-of select="substring(releaseDate, 1, 10)"/></xsl:attribute>
      <xsl:attribute name="RELEASE_YEAR"><xsl:value-of select="substring(releaseDate, 1, 4)"/></xsl:attribute>
    </xsl:if>
    <!-- The price of an album that is not sold as a whole is -1. -->
    <xsl:if test="collectionPrice &gt;= 0">
      <xsl:attribute name="PRICE"><xsl:value-of select="collectionPrice"/></xsl:attribute>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'CURRENCY'"/>
        <xsl:with-param name="value" select="currency"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
